// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QVector>

#include <chrono>

/// One step of the robot, with its time limit.
struct RobotStep
{
    QString place; ///< "FILE:LINE", the line from 1
    QString text;  ///< unchanged from the file
    QStringList words;
    int form = 0; ///< index of the form that the words have
    std::chrono::milliseconds limit{0};
};

/// A file of steps, one in each line. Words are separated by spaces; a word with spaces is in double quotes. A line
/// that begins with # is a comment. "within SECONDS" at the end sets the time limit of a step. The manual page
/// describes the steps.
class RobotScript final
{
public:
    /// Reads and checks the whole file. Each step must have one of the @p forms, such as "wait|expect NAME rows COUNT":
    /// COUNT is a number, SECONDS a time, KEY a key, any other word in capitals is any text; words in brackets are
    /// optional. Returns false if a line is wrong; the error names file and line.
    bool load(const QString& path, const QStringList& forms, QString* error);

    const QVector<RobotStep>& steps() const { return m_steps; }

private:
    static QString parse(const QString& line, const QStringList& forms, RobotStep* step);

    QVector<RobotStep> m_steps;
};

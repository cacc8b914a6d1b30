// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QVector>

#include <chrono>
#include <optional>

/// One step of the robot: a verb and its words, with the longest time that it may take.
struct RobotStep
{
    QString place; ///< "FILE:LINE", the line from 1
    int line = 0;
    QString text; ///< as it stands in the file
    QString verb;
    QStringList words;
    std::chrono::milliseconds limit{0};
};

/// A file of steps, one a line. Words are separated by blanks; one of several parts stands in double quotes, with
/// \", \\ and \n inside. A line that begins with # is a comment. The end "within SECONDS" sets a step's own limit, and
/// "include FILE" puts the steps of another file in its place. What the verbs and conditions do is told in the manual
/// page.
class RobotScript final
{
public:
    /// Reads and checks the whole file; nothing is done of one with a wrong line. The error names file and line.
    bool load(const QString& path, QString* error);
    /// The same for a text; @p name stands for the file in errors and results, and files to include are looked for
    /// beside it.
    bool parse(const QString& name, const QString& text, QString* error);

    /// The code of "Escape", "Ctrl+O" and the like, modifiers included; nothing for what is no single key.
    static std::optional<int> keyCombination(QString name);

    QString name() const { return m_name; }
    const QVector<RobotStep>& steps() const { return m_steps; }

private:
    bool appendFile(const QString& path, int depth, QString* error);
    bool append(const QString& name, const QString& text, int depth, QString* error);
    bool hasSteps(QString* error) const;

    QString m_name;
    QVector<RobotStep> m_steps;
};

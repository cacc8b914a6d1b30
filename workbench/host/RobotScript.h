// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QVector>

#include <chrono>

/// One step of the robot: a verb and its words, with the longest time that it may take.
struct RobotStep
{
    int line = 0; ///< in the file, from 1
    QString text; ///< as it stands in the file
    QString verb;
    QStringList words;
    std::chrono::milliseconds limit{0};
};

/// A file of steps, one a line. Words are separated by blanks; one of several parts stands in double quotes, with \"
/// and
/// \\ and \n inside. A line that begins with # is a comment. The end "within SECONDS" sets a step's own limit. What the
/// verbs and conditions do is told in the manual page.
class RobotScript final
{
public:
    /// Reads and checks the whole file; nothing is done of one with a wrong line. The error names file and line.
    bool load(const QString& path, QString* error);
    /// The same for a text; @p name stands for the file in errors and results.
    bool parse(const QString& name, const QString& text, QString* error);

    QString name() const { return m_name; }
    const QVector<RobotStep>& steps() const { return m_steps; }

private:
    QString m_name;
    QVector<RobotStep> m_steps;
};

// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <optional>

/// The options of the command line.
struct HostOptions
{
    QString database;      ///< empty: a file in the user's data folder
    QString plugin;        ///< empty: the library beside the program or in the build tree
    QString drive;         ///< empty: no reader
    QString simulation;    ///< empty: no simulation
    QString patient;       ///< puid of the diary to open at start; empty: none
    QString locale;        ///< empty: the system's
    QString robot;         ///< steps file; empty: no robot
    QString pictures;      ///< folder of the robot's pictures; empty: the current one
    QString log;           ///< empty: rotating files in the diagnostics folder
    QString diagnostics;   ///< folder of log and traffic; empty: the default, or none with a robot
    QString report;        ///< archive to write before exiting; empty: none
    bool personal = false; ///< the report contains personal data

    /// Parses the command line. Returns an exit status if the program must end.
    std::optional<int> read(int argc, char** argv);
};

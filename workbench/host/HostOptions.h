// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <optional>

/// What the program was asked for.
struct HostOptions
{
    QString database;      ///< empty: a file in the user's data folder
    QString plugin;        ///< empty: the library beside the program or in the build tree
    QString drive;         ///< empty: no reader
    QString simulation;    ///< empty: no simulation
    QString patient;       ///< puid of the diary to open at start; empty: none
    QString locale;        ///< empty: the system's
    QString robot;         ///< steps file; empty: a user is at the window
    QString pictures;      ///< folder of the robot's pictures; empty: the current one
    QString log;           ///< empty: rotating files in the diagnostics folder
    QString diagnostics;   ///< folder of log and traffic; empty: in the user's data folder, with a robot none
    QString report;        ///< archive to write and end; empty: none
    bool personal = false; ///< the report holds personal data

    /// Reads the command line. Returns a status if the program ends with it.
    std::optional<int> read(int argc, char** argv);
};

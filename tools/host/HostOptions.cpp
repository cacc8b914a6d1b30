// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/host/HostOptions.h"

#include "hostapi/PluginIdentity.h"
#include "tools/support/CommandLine.h"

std::optional<int> HostOptions::read(int argc, char** argv)
{
    const std::pair<CommandLine::Option, QString HostOptions::*> texts[] = {
        {{"database", "FILE", "Patient database; created if missing. Default: a file in the user's data folder."},
         &HostOptions::database},
        {{"plugin", "LIBRARY", "Plug-in library. Default: the one beside the program or in the build tree."},
         &HostOptions::plugin},
        {{"drive", "FOLDER", "Folder that represents the reader's drive. The reader is plugged in while it exists."},
         &HostOptions::drive},
        {{"simulation", "FOLDER", "Run the plug-in in simulation mode on this folder."}, &HostOptions::simulation},
        {{"patient", "PUID", "Open the diary of the patient with this key at start."}, &HostOptions::patient},
        {{"locale", "NAME", "Locale, such as de_DE."}, &HostOptions::locale},
        {{"robot", "STEPS", "Perform the steps of this file as a user would, and exit."}, &HostOptions::robot},
        {{"pictures", "FOLDER", "Folder for the robot's pictures; created if missing. Default: the current one."},
         &HostOptions::pictures},
        {{"log", "FILE", "Append the log to this file, without a size limit."}, &HostOptions::log},
        {{"diagnostics", "FOLDER",
          "Keep the log and the latest traffic of the drive here. Default: a folder in the user's data folder; with "
          "--robot none."},
         &HostOptions::diagnostics},
        {{"report", "FILE", "Write log, versions, settings and the latest traffic to this archive, and exit."},
         &HostOptions::report},
    };
    QVector<CommandLine::Option> options;
    for (const auto& [option, target] : texts)
        options.append(option);
    options.append({"with-personal-data", nullptr, "With --report: keep names, ids and serial numbers."});
    CommandLine line("merivo-host", MERIVO_PLUGIN_VERSION, "A stand-in host that runs, shows and tests the plug-in.");
    if (const auto status = line.read(argc, argv, options))
        return status;
    for (const auto& [option, target] : texts)
        this->*target = line.value(option.name);
    personal = line.isSet("with-personal-data");
    const std::pair<bool, const char*> contradictions[] = {
        {robot.isEmpty() && !pictures.isEmpty(), "--pictures needs --robot"},
        {report.isEmpty() && personal, "--with-personal-data needs --report"},
        {!report.isEmpty() && !robot.isEmpty(), "--report and --robot exclude each other"},
        {!drive.isEmpty() && !simulation.isEmpty(), "--drive and --simulation exclude each other"},
    };
    for (const auto& [isWrong, sentence] : contradictions)
        if (isWrong)
            return line.refuse(sentence);
    const auto status = line.refusePositional();
    return status ? status : line.setLocale();
}

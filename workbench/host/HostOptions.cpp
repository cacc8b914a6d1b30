// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/HostOptions.h"

#include "host/PluginIdentity.h"
#include "workbench/support/CommandLine.h"

std::optional<int> HostOptions::read(int argc, char** argv)
{
    const std::pair<CommandLine::Option, QString HostOptions::*> texts[] = {
        {{"database", "FILE", "Patient database; made if there is none. Default: a file in the user's data folder."},
         &HostOptions::database},
        {{"plugin", "LIBRARY", "Plug-in library. Default: the one beside the program or in the build tree."},
         &HostOptions::plugin},
        {{"drive", "FOLDER", "Folder that stands for the reader's drive. The reader is there while the folder exists."},
         &HostOptions::drive},
        {{"simulation", "FOLDER", "Let the plug-in run against this folder in place of a reader."},
         &HostOptions::simulation},
        {{"patient", "PUID", "Open the diary of the patient with this key at start."}, &HostOptions::patient},
        {{"locale", "NAME", "Locale of the run, such as de_DE."}, &HostOptions::locale},
        {{"robot", "STEPS", "Do the steps of this file as a user would, and end."}, &HostOptions::robot},
        {{"pictures", "FOLDER", "Folder for the robot's pictures; made if there is none. Default: the current one."},
         &HostOptions::pictures},
        {{"log", "FILE", "Append the host's log to this file, without a limit."}, &HostOptions::log},
        {{"diagnostics", "FOLDER",
          "Keep the log and the last traffic of the drive here. Default: a folder in the user's data folder; with "
          "--robot none."},
         &HostOptions::diagnostics},
        {{"report", "FILE", "Write log, versions, settings and the last traffic to this archive, and end."},
         &HostOptions::report},
    };
    QVector<CommandLine::Option> options;
    for (const auto& [option, target] : texts)
        options.append(option);
    options += {{"log-size", "KIB", "Size of a log file at which a new one is begun. Default: 1024."},
                {"log-files", "COUNT", "Number of log files that are kept. Default: 5."},
                {"with-personal-data", nullptr, "With --report: leave names, ids and serial numbers as they are."},
                {"json", nullptr, "Write the robot's steps as JSON, one object a line."}};
    CommandLine line("merivo-host", MERIVO_PLUGIN_VERSION, "A stand-in host that runs, shows and tests the plug-in.");
    if (const auto status = line.read(argc, argv, options))
        return status;
    for (const auto& [option, target] : texts)
        this->*target = line.value(option.name);
    json = line.isSet("json");
    personal = line.isSet("with-personal-data");
    const std::pair<bool, const char*> contradictions[] = {
        {robot.isEmpty() && (json || !pictures.isEmpty()), "--json and --pictures need --robot"},
        {report.isEmpty() && personal, "--with-personal-data needs --report"},
        {!report.isEmpty() && !robot.isEmpty(), "--report and --robot exclude each other"},
        {!drive.isEmpty() && !simulation.isEmpty(), "--drive and --simulation exclude each other"},
        {!log.isEmpty() && (line.isSet("log-size") || line.isSet("log-files")),
         "--log-size and --log-files are for the log of the diagnostics, so --log excludes them"},
    };
    for (const auto& [isWrong, sentence] : contradictions)
        if (isWrong)
            return line.refuse(sentence);
    if (const auto status = line.readNumber("log-size", 1, 1024 * 1024, &logKib))
        return status;
    if (const auto status = line.readNumber("log-files", 2, MaxLogFiles, &logFiles))
        return status;
    const auto status = line.refusePositional();
    return status ? status : line.setLocale();
}

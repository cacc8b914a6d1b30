// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/HostOptions.h"

#include <QCommandLineParser>
#include <QLocale>

namespace {

struct ValueOption
{
    const char* name;
    const char* valueName;
    const char* description;
    QString HostOptions::*value;
};

constexpr ValueOption ValueOptions[] = {
    {"database", "FILE", "Patient database; made if there is none. Default: a file in the user's data folder.",
     &HostOptions::database},
    {"plugin", "LIBRARY", "Plug-in library. Default: the one beside the program or in the build tree.",
     &HostOptions::plugin},
    {"drive", "FOLDER", "Folder that stands for the reader's drive. The reader is there while the folder exists.",
     &HostOptions::drive},
    {"simulation", "FOLDER", "Let the plug-in run against this folder in place of a reader.", &HostOptions::simulation},
    {"patient", "PUID", "Open the diary of the patient with this key at start.", &HostOptions::patient},
    {"locale", "NAME", "Locale of the run, such as de_DE.", &HostOptions::locale},
    {"robot", "STEPS", "Do the steps of this file as a user would, and end.", &HostOptions::robot},
    {"pictures", "FOLDER", "Folder for the robot's pictures; made if there is none. Default: the current one.",
     &HostOptions::pictures},
    {"log", "FILE", "Append the host's log to this file, without a limit.", &HostOptions::log},
    {"diagnostics", "FOLDER",
     "Keep the log and the last traffic of the drive here. Default: a folder in the user's data folder; with --robot "
     "none.",
     &HostOptions::diagnostics},
    {"report", "FILE", "Write log, versions, settings and the last traffic to this archive, and end.",
     &HostOptions::report},
};

struct NumberOption
{
    const char* name;
    const char* valueName;
    const char* description;
    int least;
    int most;
    int HostOptions::*value;
};

constexpr NumberOption NumberOptions[] = {
    {"log-size", "KIB", "Size of a log file at which a new one is begun. Default: 1024.", 1, 1024 * 1024,
     &HostOptions::logKib},
    {"log-files", "COUNT", "Number of log files that are kept. Default: 5.", 2, HostOptions::MostLogFiles,
     &HostOptions::logFiles},
};

/// Fills the parser in the order of the help text.
void addOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription("A stand-in host that runs, shows and tests the plug-in.");
    for (const ValueOption& option : ValueOptions)
        parser.addOption(
            {option.name, option.description, option.valueName});
    for (const NumberOption& option : NumberOptions)
        parser.addOption(
            {option.name, option.description, option.valueName});
    parser.addOption({"with-personal-data", "With --report: leave names, ids and serial numbers as they are."});
    parser.addOption({"json", "Write the robot's steps as JSON, one object a line."});
    parser.addOption({{"h", "help"}, "Show this help."});
    parser.addOption({{"v", "version"}, "Show the version."});
}

} // namespace

HostOptions HostOptions::parse(const QStringList& arguments, QString* error)
{
    HostOptions options;
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return options;
    }
    options.help = parser.isSet("help");
    options.version = parser.isSet("version");
    options.json = parser.isSet("json");
    options.personal = parser.isSet("with-personal-data");
    for (const NumberOption& option : NumberOptions) {
        const QString name = option.name;
        if (!parser.isSet(name))
            continue;
        bool isNumber = false;
        options.*option.value = parser.value(name).toInt(&isNumber);
        if (!isNumber || options.*option.value < option.least || options.*option.value > option.most)
            *error = QString("--%1: '%2' isn't a whole number from %3 to %4")
                         .arg(name, parser.value(name), QString::number(option.least), QString::number(option.most));
        else if (parser.isSet("log"))
            *error = QString("--%1 is for the log of the diagnostics, so --log excludes it").arg(name);
    }
    for (const ValueOption& option : ValueOptions) {
        const QString name = option.name;
        options.*option.value = parser.value(name);
        if (parser.isSet(name) && parser.value(name).isEmpty())
            *error = QString("--%1 needs a value").arg(name);
        else if (parser.values(name).size() > 1)
            *error = QString("--%1 is given more than once").arg(name);
    }
    if (!parser.positionalArguments().isEmpty())
        *error = QString("unexpected argument '%1'").arg(parser.positionalArguments().constFirst());
    else if (options.robot.isEmpty() && (options.json || !options.pictures.isEmpty()))
        *error = "--json and --pictures need --robot";
    else if (options.report.isEmpty() ? options.personal : !options.robot.isEmpty())
        *error = options.personal ? "--with-personal-data needs --report" : "--report and --robot exclude each other";
    else if (!options.drive.isEmpty() && !options.simulation.isEmpty())
        *error = "--drive and --simulation exclude each other";
    // A name that Qt doesn't know gives the C locale.
    else if (!options.locale.isEmpty() && options.locale != "C" && QLocale(options.locale).language() == QLocale::C)
        *error = QString("--locale: there is no locale '%1'").arg(options.locale);
    return options;
}

QString HostOptions::helpText()
{
    QCommandLineParser parser;
    addOptions(parser);
    return parser.helpText();
}

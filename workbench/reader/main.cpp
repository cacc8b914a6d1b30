// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/Faults.h"
#include "workbench/reader/ReaderDrive.h"
#include "workbench/reader/ReaderSimulator.h"
#include "workbench/reader/Scenario.h"
#include "workbench/reader/TrafficReplay.h"
#include "workbench/support/LogFile.h"
#include "workbench/support/Platform.h"
#include "workbench/traffic/TrafficAnonymiser.h"
#include "workbench/traffic/TrafficRecorder.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <initializer_list>

namespace {

enum ExitStatus {
    Success = 0,
    Failure = 1,
    WrongCall = 2,
};

void print(std::FILE* stream, const QString& line)
{
    QTextStream out(stream);
    out.setCodec("UTF-8");
    out << line << Qt::endl;
}

int complain(ExitStatus status, const QString& what)
{
    print(stderr, "merivo-reader: " + what);
    return status;
}

int complain(ExitStatus status, const QStringList& faults)
{
    for (const QString& fault : faults)
        complain(status, fault);
    return status;
}

const QCommandLineOption ScenarioOption("scenario", "Play the world that FILE describes.", "FILE");
const QCommandLineOption CheckOption("check-scenario", "Check the scenario file and end. Needs no DRIVE.");
const QCommandLineOption FaultOption("fault", "Misbehave: NAME[=VALUE][@COMMAND][:once]. Repeatable.", "FAULT");
const QCommandLineOption ListFaultsOption("list-faults", "Name all faults and end.");
const QCommandLineOption PairOption("pair", "Begin with this pump paired with this patient. Repeatable.",
                                    "SERIAL=PATIENT");
const QCommandLineOption InstantOption("instant", "Let no step take time.");
const QCommandLineOption SeedOption("seed", "Draw everything that varies from N; the same N gives the same run.", "N");
const QCommandLineOption RecordOption("record", "Write all traffic of the drive down in FILE, as JSON lines.", "FILE");
const QCommandLineOption WatchOption("watch-only", "Record a drive that another reader serves; play nothing.");
const QCommandLineOption ReplayOption("replay", "Answer as the reader did whose traffic FILE recorded.", "FILE");
const QCommandLineOption
    AnonymiseOption("anonymise",
                    "Write the recording FILE without personal data to a second one, named in place of "
                    "DRIVE, and end.",
                    "FILE");
const QCommandLineOption LogOption("log", "Append what happens to FILE instead of standard error.", "FILE");

/// The scenario with what the command line adds to it.
int scenarioFor(const QCommandLineParser& parser, Scenario* scenario)
{
    if (parser.isSet(ScenarioOption)) {
        QStringList errors;
        const std::optional<Scenario> loaded = loadScenario(parser.value(ScenarioOption), &errors);
        if (!loaded)
            return complain(Failure, errors);
        *scenario = *loaded;
    }
    if (parser.isSet(SeedOption)) {
        bool isNumber = false;
        scenario->seed = parser.value(SeedOption).toUInt(&isNumber);
        if (!isNumber)
            return complain(WrongCall,
                            QString("--seed: \"%1\" isn't a whole number, 0 or above").arg(parser.value(SeedOption)));
    }
    const QStringList faults = parser.values(FaultOption);
    for (const QString& fault : faults) {
        QString error;
        if (!scenario->faults.add(fault, &error))
            return complain(WrongCall, "--fault: " + error);
    }
    return Success;
}

/// Writes a line of what happens, with the time. Reports it if the log can't be written any more.
void writeLog(LogFile& log, const QString& line)
{
    const QString time = QDateTime::currentDateTime().toString(Qt::ISODateWithMs);
    if (!log.write(QString("%1 %2\n").arg(time, line).toUtf8()))
        complain(Failure, log.errorText());
}

/// WrongCall, told, for options that contradict each other.
int checkCall(const QCommandLineParser& parser)
{
    const auto isPlaying = [&parser](std::initializer_list<QCommandLineOption> options) {
        return std::any_of(options.begin(), options.end(), [&](const auto& option) { return parser.isSet(option); });
    };
    if (parser.isSet(WatchOption) && !parser.isSet(RecordOption))
        return complain(WrongCall, "--watch-only: needs --record");
    if (parser.isSet(WatchOption) &&
        isPlaying({ScenarioOption, FaultOption, PairOption, InstantOption, SeedOption, ReplayOption}))
        return complain(WrongCall, "--watch-only: plays nothing, so only --record and --log go with it");
    if (parser.isSet(ReplayOption) && isPlaying({ScenarioOption, FaultOption, PairOption, SeedOption}))
        return complain(WrongCall, "--replay: plays what was recorded, so no scenario, fault, pair or seed "
                                   "goes with it");
    if (parser.isSet(AnonymiseOption) && isPlaying({ScenarioOption, CheckOption, FaultOption, PairOption, InstantOption,
                                                    SeedOption, RecordOption, ReplayOption, LogOption}))
        return complain(WrongCall, "--anonymise: converts a recording, and no other option goes with it");
    if (parser.isSet(AnonymiseOption) && parser.positionalArguments().size() != 1)
        return complain(WrongCall, "--anonymise: exactly one file to write to expected; see --help");
    if (parser.positionalArguments().size() != (parser.isSet(CheckOption) ? 0 : 1))
        return complain(WrongCall, parser.isSet(CheckOption) ? "--check-scenario: takes no DRIVE"
                                                             : "exactly one DRIVE expected; see --help");
    if (parser.isSet(CheckOption) && !parser.isSet(ScenarioOption))
        return complain(WrongCall, "--check-scenario: needs --scenario");
    return Success;
}

/// Runs until the program is told to stop or something fails.
int serve(const QString& announcement)
{
    print(stdout, announcement);
    return QCoreApplication::exec();
}

void giveUp(const QString& error)
{
    QCoreApplication::exit(complain(Failure, error));
}

int playRecording(const QCommandLineParser& parser, ReaderDrive& drive, LogFile& log)
{
    QStringList errors;
    const std::optional<QVector<TrafficEntry>> entries = loadTraffic(parser.value(ReplayOption), &errors);
    if (!entries)
        return complain(Failure, errors);
    TrafficReplay replay(drive, *entries, parser.isSet(InstantOption));
    QObject::connect(&replay, &TrafficReplay::logged, qApp, [&log](const QString& line) { writeLog(log, line); });
    QObject::connect(&replay, &TrafficReplay::failed, qApp, giveUp, Qt::QueuedConnection);
    replay.start();
    return serve(QString("merivo-reader: replaying on %1").arg(drive.path()));
}

int playScenario(const QCommandLineParser& parser, const Scenario& scenario, ReaderDrive& drive, LogFile& log)
{
    ReaderSimulator reader(drive, scenario, parser.isSet(InstantOption));
    QObject::connect(&reader, &ReaderSimulator::logged, qApp, [&log](const QString& line) { writeLog(log, line); });
    QObject::connect(&reader, &ReaderSimulator::failed, qApp, giveUp, Qt::QueuedConnection);
    const QStringList pairs = parser.values(PairOption);
    for (const QString& pair : pairs) {
        const QString serialNumber = pair.section('=', 0, 0);
        const QString patientId = pair.section('=', 1);
        if (serialNumber.isEmpty() || !isPatientId(patientId))
            return complain(WrongCall, QString("--pair: \"%1\" isn't SERIAL=PATIENT").arg(pair));
        reader.pairBeforehand(serialNumber, patientId);
    }
    QString error;
    if (!reader.start(&error))
        return complain(Failure, error);
    return serve(QString("merivo-reader: serving %1").arg(drive.path()));
}

int serveDrive(const QCommandLineParser& parser, const Scenario& scenario, ReaderDrive& drive, LogFile& log)
{
    if (parser.isSet(WatchOption))
        return serve(QString("merivo-reader: watching %1").arg(drive.path()));
    if (parser.isSet(ReplayOption))
        return playRecording(parser, drive, log);
    return playScenario(parser, scenario, drive, log);
}

int run(const QCommandLineParser& parser)
{
    if (parser.isSet(ListFaultsOption)) {
        QTextStream(stdout) << FaultSet::catalogue();
        return Success;
    }
    if (const int status = checkCall(parser))
        return status;
    if (parser.isSet(AnonymiseOption)) {
        QStringList errors;
        const bool isWritten =
            anonymiseRecording(parser.value(AnonymiseOption), parser.positionalArguments().constFirst(), &errors);
        return isWritten ? Success : complain(Failure, errors);
    }
    Scenario scenario = defaultScenario();
    if (const int status = scenarioFor(parser, &scenario))
        return status;
    if (parser.isSet(CheckOption)) {
        print(stdout, QString("%1: sound").arg(parser.value(ScenarioOption)));
        return Success;
    }

    LogFile log;
    if (!log.open(parser.value(LogOption)))
        return complain(Failure, log.errorText());
    Platform::quitOnStopRequest();

    QString error;
    ReaderDrive drive(parser.positionalArguments().first());
    if (!parser.isSet(WatchOption) && !drive.open(&error))
        return complain(Failure, error);
    TrafficRecorder recorder(drive.path());
    // Told at once, also behind the event loop's end; only the end has to wait until the loop runs.
    QObject::connect(&recorder, &TrafficRecorder::failed, qApp, [](const QString& fault) { complain(Failure, fault); });
    QObject::connect(
        &recorder, &TrafficRecorder::failed, qApp, [] { QCoreApplication::exit(Failure); }, Qt::QueuedConnection);
    if (parser.isSet(RecordOption) && !recorder.start(parser.value(RecordOption), &error))
        return complain(Failure, error);

    const int status = serveDrive(parser, scenario, drive, log);
    const bool isWhole = !parser.isSet(RecordOption) || recorder.stop();
    return isWhole ? status : Failure;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("merivo-reader");
    QCoreApplication::setApplicationVersion(QStringLiteral(MERIVO_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription("Plays the device reader on the folder or removable drive DRIVE.");
    parser.addPositionalArgument("DRIVE", "The root of the reader's drive; it must exist.");
    parser.addOptions({ScenarioOption, CheckOption, FaultOption, ListFaultsOption, PairOption, InstantOption,
                       SeedOption, RecordOption, WatchOption, ReplayOption, AnonymiseOption, LogOption});
    // Not addHelpOption(): that brings --help-all along, for options that this program doesn't have.
    const QCommandLineOption helpOption({"h", "help"}, "Show this summary and end.");
    const QCommandLineOption versionOption({"v", "version"}, "Show the version and end.");
    parser.addOptions({helpOption, versionOption});

    if (!parser.parse(QCoreApplication::arguments()))
        return complain(WrongCall, parser.errorText());
    if (parser.isSet(helpOption)) {
        QTextStream(stdout) << parser.helpText();
        return Success;
    }
    if (parser.isSet(versionOption)) {
        print(stdout, QString("merivo-reader %1").arg(QCoreApplication::applicationVersion()));
        return Success;
    }
    return run(parser);
}

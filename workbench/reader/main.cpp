// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/Faults.h"
#include "workbench/reader/ReaderDrive.h"
#include "workbench/reader/ReaderSimulator.h"
#include "workbench/reader/Scenario.h"
#include "workbench/reader/TrafficReplay.h"
#include "workbench/support/CommandLine.h"
#include "workbench/support/LogFile.h"
#include "workbench/support/Platform.h"
#include "workbench/traffic/TrafficAnonymiser.h"
#include "workbench/traffic/TrafficRecorder.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QTextStream>

#include <limits>

namespace {

const QVector<CommandLine::Option> Options{
    {"scenario", "FILE", "Play the world that FILE describes."},
    {"check-scenario", nullptr, "Check the scenario file and end. Needs no DRIVE."},
    {"fault", "FAULT", "Misbehave: NAME[=VALUE][@COMMAND][:once]. Repeatable."},
    {"list-faults", nullptr, "Name all faults and end."},
    {"pair", "SERIAL=PATIENT", "Begin with this pump paired with this patient. Repeatable."},
    {"instant", nullptr, "Let no step take time."},
    {"seed", "N", "Draw everything that varies from N; the same N gives the same run."},
    {"record", "FILE", "Write all traffic of the drive down in FILE, as JSON lines."},
    {"watch-only", nullptr, "Record a drive that another reader serves; play nothing."},
    {"replay", "FILE", "Answer as the reader did whose traffic FILE recorded."},
    {"anonymise", "FILE",
     "Write the recording FILE without personal data to a second one, named in place of DRIVE, and end."},
    {"log", "FILE", "Append what happens to FILE instead of standard error."},
};

const struct
{
    const char* option;
    QStringList excluded;
    const char* reason;
} Exclusions[] = {
    {"watch-only",
     {"scenario", "fault", "pair", "instant", "seed", "replay"},
     "plays nothing, so only --record and --log go with it"},
    {"replay",
     {"scenario", "fault", "pair", "seed"},
     "plays what was recorded, so no scenario, fault, pair or seed goes with it"},
    {"anonymise",
     {"scenario", "check-scenario", "fault", "pair", "instant", "seed", "record", "replay", "log"},
     "converts a recording, and no other option goes with it"},
};

/// The scenario with what the command line adds to it.
int scenarioFor(const CommandLine& line, Scenario* scenario)
{
    if (line.isSet("scenario")) {
        QStringList errors;
        const std::optional<Scenario> loaded = loadScenario(line.value("scenario"), &errors);
        if (!loaded)
            return complain(Failure, errors);
        *scenario = *loaded;
    }
    if (const auto status = line.readNumber("seed", 0, std::numeric_limits<uint>::max(), &scenario->seed))
        return *status;
    const QStringList faults = line.values("fault");
    for (const QString& fault : faults) {
        QString error;
        if (!scenario->faults.add(fault, &error))
            return complain(WrongCall, "--fault: " + error);
    }
    return Success;
}

/// Returns a status if options contradict each other.
std::optional<int> checkCall(const CommandLine& line)
{
    for (const auto& [option, excluded, reason] : Exclusions) {
        for (const QString& other : excluded)
            if (line.isSet(option) && line.isSet(other))
                return CommandLine::refuse(QString("--%1: %2").arg(option, reason));
    }
    if (line.isSet("watch-only") && !line.isSet("record"))
        return CommandLine::refuse("--watch-only: needs --record");
    if (line.isSet("check-scenario"))
        return line.isSet("scenario") ? line.refusePositional()
                                      : CommandLine::refuse("--check-scenario: needs --scenario");
    if (line.positionalArguments().size() == 1)
        return std::nullopt;
    return CommandLine::refuse(line.isSet("anonymise") ? "--anonymise: exactly one file to write to expected"
                                                       : "exactly one DRIVE expected");
}

/// Runs until the program is told to stop or something fails.
int serve(const QString& announcement)
{
    print(announcement);
    return QCoreApplication::exec();
}

/// Logs with the time what the simulator or the replay does, and ends the program with the first failure.
template <class Reader>
void observe(const Reader& reader, LogFile& log)
{
    QObject::connect(&reader, &Reader::logged, qApp, [&log](const QString& text) {
        const QString time = QDateTime::currentDateTime().toString(Qt::ISODateWithMs);
        if (!log.write(QString("%1 %2\n").arg(time, text).toUtf8()))
            complain(Failure, log.errorText());
    });
    const auto giveUp = [](const QString& error) {
        QCoreApplication::exit(complain(Failure, error));
    };
    QObject::connect(&reader, &Reader::failed, qApp, giveUp, Qt::QueuedConnection);
}

int playRecording(const CommandLine& line, ReaderDrive& drive, LogFile& log)
{
    QStringList errors;
    const std::optional<QVector<TrafficEntry>> entries = loadTraffic(line.value("replay"), &errors);
    if (!entries)
        return complain(Failure, errors);
    TrafficReplay replay(drive, *entries, line.isSet("instant"));
    observe(replay, log);
    replay.start();
    return serve(QString("merivo-reader: replaying on %1").arg(drive.path()));
}

int playScenario(const CommandLine& line, const Scenario& scenario, ReaderDrive& drive, LogFile& log)
{
    ReaderSimulator reader(drive, scenario, line.isSet("instant"));
    observe(reader, log);
    const QStringList pairs = line.values("pair");
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

int serveDrive(const CommandLine& line, const Scenario& scenario, ReaderDrive& drive, LogFile& log)
{
    if (line.isSet("watch-only"))
        return serve(QString("merivo-reader: watching %1").arg(drive.path()));
    if (line.isSet("replay"))
        return playRecording(line, drive, log);
    return playScenario(line, scenario, drive, log);
}

int run(const CommandLine& line)
{
    if (line.isSet("list-faults")) {
        QTextStream(stdout) << FaultSet::catalogue();
        return Success;
    }
    if (const auto status = checkCall(line))
        return *status;
    if (line.isSet("anonymise")) {
        QStringList errors;
        const bool isWritten =
            anonymiseRecording(line.value("anonymise"), line.positionalArguments().constFirst(), &errors);
        return isWritten ? Success : complain(Failure, errors);
    }
    Scenario scenario = defaultScenario();
    if (const int status = scenarioFor(line, &scenario))
        return status;
    if (line.isSet("check-scenario")) {
        print(QString("%1: sound").arg(line.value("scenario")));
        return Success;
    }

    LogFile log;
    if (!log.open(line.value("log")))
        return complain(Failure, log.errorText());
    Platform::quitOnStopRequest();

    QString error;
    ReaderDrive drive(line.positionalArguments().first());
    if (!line.isSet("watch-only") && !drive.open(&error))
        return complain(Failure, error);
    TrafficRecorder recorder(drive.path());
    // Told at once, also behind the event loop's end; only the end has to wait until the loop runs.
    QObject::connect(&recorder, &TrafficRecorder::failed, qApp, [](const QString& fault) { complain(Failure, fault); });
    QObject::connect(
        &recorder, &TrafficRecorder::failed, qApp, [] { QCoreApplication::exit(Failure); }, Qt::QueuedConnection);
    if (line.isSet("record") && !recorder.start(line.value("record"), &error))
        return complain(Failure, error);

    const int status = serveDrive(line, scenario, drive, log);
    const bool isWhole = !line.isSet("record") || recorder.stop();
    return isWhole ? status : Failure;
}

} // namespace

int main(int argc, char** argv)
{
    CommandLine line("merivo-reader", MERIVO_VERSION,
                     "Plays the device reader on the folder or removable drive DRIVE.");
    line.addPositionalArgument("DRIVE", "The root of the reader's drive; it must exist.");
    if (const auto status = line.read(argc, argv, Options, {"fault", "pair"}))
        return *status;
    const QCoreApplication application(argc, argv);
    return run(line);
}

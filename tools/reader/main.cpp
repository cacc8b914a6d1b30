// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/reader/Faults.h"
#include "tools/reader/ReaderDrive.h"
#include "tools/reader/ReaderSimulator.h"
#include "tools/reader/Scenario.h"
#include "tools/reader/TrafficReplay.h"
#include "tools/support/CommandLine.h"
#include "tools/support/LogFile.h"
#include "tools/support/Platform.h"
#include "tools/traffic/TrafficAnonymiser.h"
#include "tools/traffic/TrafficRecorder.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QTextStream>

#include <limits>

namespace {

const QVector<CommandLine::Option> Options{
    {"scenario", "FILE", "Simulate the reader and pumps that FILE describes."},
    {"check-scenario", nullptr, "Check the scenario file and exit. Needs no DRIVE."},
    {"fault", "FAULT", "Inject a fault: NAME[=VALUE][@COMMAND][:once]. Repeatable."},
    {"list-faults", nullptr, "List all faults and exit."},
    {"pair", "SERIAL=PATIENT", "Start with this pump paired with this patient. Repeatable."},
    {"instant", nullptr, "Run without delays."},
    {"seed", "N", "Seed for everything that varies; the same seed yields the same run."},
    {"record", "FILE", "Record all traffic of the drive in FILE, as JSON lines."},
    {"watch-only", nullptr, "Only record a drive that another reader serves."},
    {"replay", "FILE", "Answer as the reader in the recording FILE did."},
    {"anonymise", "FILE",
     "Write the recording FILE without personal data to a second one, named in place of DRIVE, and exit."},
    {"log", "FILE", "Append the log to FILE instead of standard error."},
};

const struct
{
    const char* option;
    QStringList excluded;
    const char* reason;
} Exclusions[] = {
    {"watch-only",
     {"scenario", "fault", "pair", "instant", "seed", "replay"},
     "excludes all options except --record and --log"},
    {"replay", {"scenario", "fault", "pair", "seed"}, "excludes --scenario, --fault, --pair and --seed"},
    {"anonymise",
     {"scenario", "check-scenario", "fault", "pair", "instant", "seed", "record", "replay", "log"},
     "excludes all other options"},
};

/// Loads the scenario and adds the options of the command line.
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

/// Runs until the program is asked to stop or something fails.
int serve(const QString& announcement)
{
    print(announcement);
    return QCoreApplication::exec();
}

/// Logs the messages of the simulator or the replay with their time, and ends the program on the first failure.
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

int replayRecording(const CommandLine& line, ReaderDrive& drive, LogFile& log)
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

int runScenario(const CommandLine& line, const Scenario& scenario, ReaderDrive& drive, LogFile& log)
{
    ReaderSimulator reader(drive, scenario, line.isSet("instant"));
    observe(reader, log);
    const QStringList pairs = line.values("pair");
    for (const QString& pair : pairs) {
        const QString serialNumber = pair.section('=', 0, 0);
        const QString patientId = pair.section('=', 1);
        if (serialNumber.isEmpty() || !isPatientId(patientId))
            return complain(WrongCall, QString("--pair: \"%1\" isn't SERIAL=PATIENT").arg(pair));
        reader.pairAtStart(serialNumber, patientId);
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
        return replayRecording(line, drive, log);
    return runScenario(line, scenario, drive, log);
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
        print(QString("%1: valid").arg(line.value("scenario")));
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
    // Reports at once, also after the event loop has ended; only exit() needs a running loop.
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
    const QString description = "Simulates the device reader on the folder or removable drive DRIVE.";
    CommandLine line("merivo-reader", MERIVO_VERSION, description);
    line.setApplicationDescription(description + "\nCommands and statuses are in " + Platform::localeCodecName() + '.');
    line.addPositionalArgument("DRIVE", "The root of the reader's drive; it must exist.");
    if (const auto status = line.read(argc, argv, Options, {"fault", "pair"}))
        return *status;
    const QCoreApplication application(argc, argv);
    return run(line);
}

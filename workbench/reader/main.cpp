// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/Faults.h"
#include "workbench/reader/ReaderDrive.h"
#include "workbench/reader/ReaderSimulator.h"
#include "workbench/reader/Scenario.h"
#include "workbench/reader/StopSignals.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTextStream>

#include <cstdio>

namespace {

enum ExitStatus {
    Success = 0,
    Failure = 1,
    WrongCall = 2,
};

void print(std::FILE* stream, const QString& line)
{
    QTextStream(stream) << line << Qt::endl;
}

int complain(ExitStatus status, const QString& what)
{
    print(stderr, QStringLiteral("merivo-reader: ") + what);
    return status;
}

int complain(ExitStatus status, const QStringList& faults)
{
    for (const QString& fault : faults)
        complain(status, fault);
    return status;
}

const QCommandLineOption ScenarioOption(QStringLiteral("scenario"),
                                        QStringLiteral("Play the world that FILE describes."), QStringLiteral("FILE"));
const QCommandLineOption CheckOption(QStringLiteral("check-scenario"),
                                     QStringLiteral("Check the scenario file and end. Needs no DRIVE."));
const QCommandLineOption
    FaultOption(QStringLiteral("fault"),
                QStringLiteral("Misbehave: NAME, NAME=VALUE, or either with @COMMAND. Repeatable."),
                QStringLiteral("FAULT"));
const QCommandLineOption ListFaultsOption(QStringLiteral("list-faults"), QStringLiteral("Name all faults and end."));
const QCommandLineOption PairOption(QStringLiteral("pair"),
                                    QStringLiteral("Begin with this pump paired with this patient. Repeatable."),
                                    QStringLiteral("SERIAL=PATIENT"));
const QCommandLineOption InstantOption(QStringLiteral("instant"), QStringLiteral("Let no step take time."));
const QCommandLineOption
    SeedOption(QStringLiteral("seed"),
               QStringLiteral("Draw everything that varies from N; the same N gives the same run."),
               QStringLiteral("N"));
const QCommandLineOption LogOption(QStringLiteral("log"),
                                   QStringLiteral("Append what happens to FILE instead of standard error."),
                                   QStringLiteral("FILE"));

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
            return complain(
                WrongCall,
                QStringLiteral("--seed: \"%1\" isn't a whole number, 0 or above").arg(parser.value(SeedOption)));
    }
    const QStringList faults = parser.values(FaultOption);
    for (const QString& fault : faults) {
        QString error;
        if (!scenario->faults.add(fault, &error))
            return complain(WrongCall, QStringLiteral("--fault: ") + error);
    }
    return Success;
}

class LogFile
{
public:
    bool open(const QString& fileName)
    {
        if (fileName.isEmpty())
            return m_file.open(stderr, QIODevice::WriteOnly);
        m_file.setFileName(fileName);
        return m_file.open(QIODevice::WriteOnly | QIODevice::Append);
    }

    QString errorString() const { return m_file.errorString(); }

    void write(const QString& line)
    {
        const QString time = QDateTime::currentDateTime().toString(Qt::ISODateWithMs);
        m_file.write(QStringLiteral("%1 %2\n").arg(time, line).toUtf8());
        m_file.flush();
    }

private:
    QFile m_file;
};

int run(const QCommandLineParser& parser)
{
    if (parser.isSet(ListFaultsOption)) {
        QTextStream(stdout) << FaultSet::catalogue();
        return Success;
    }
    Scenario scenario = defaultScenario();
    if (const int status = scenarioFor(parser, &scenario))
        return status;
    if (parser.isSet(CheckOption)) {
        print(stdout, QStringLiteral("The scenario is sound."));
        return Success;
    }
    if (parser.positionalArguments().size() != 1)
        return complain(WrongCall, QStringLiteral("exactly one DRIVE expected; see --help"));
    const QString path = parser.positionalArguments().first();

    LogFile log;
    if (!log.open(parser.value(LogOption)))
        return complain(Failure, QStringLiteral("%1: %2").arg(parser.value(LogOption), log.errorString()));

    StopSignals stopSignals;
    QObject::connect(&stopSignals, &StopSignals::stopRequested, qApp, &QCoreApplication::quit);
    const auto giveUp = [](const QString& error) {
        complain(Failure, error);
        QCoreApplication::exit(Failure);
    };

    QString error;
    ReaderDrive drive(path);
    if (!drive.open(&error))
        return complain(Failure, error);

    ReaderSimulator reader(drive, scenario, parser.isSet(InstantOption));
    QObject::connect(&reader, &ReaderSimulator::logged, qApp, [&log](const QString& line) { log.write(line); });
    QObject::connect(&reader, &ReaderSimulator::failed, qApp, giveUp, Qt::QueuedConnection);
    const QStringList pairs = parser.values(PairOption);
    for (const QString& pair : pairs) {
        const QString serialNumber = pair.section(QLatin1Char('='), 0, 0);
        const QString patientId = pair.section(QLatin1Char('='), 1);
        if (serialNumber.isEmpty() || patientId.trimmed() != patientId || patientId.isEmpty())
            return complain(WrongCall, QStringLiteral("--pair: \"%1\" isn't SERIAL=PATIENT").arg(pair));
        reader.pairBeforehand(serialNumber, patientId);
    }
    if (!reader.start(&error))
        return complain(Failure, error);
    print(stdout, QStringLiteral("merivo-reader: serving %1").arg(QDir::toNativeSeparators(path)));
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("merivo-reader"));
    QCoreApplication::setApplicationVersion(QStringLiteral(MERIVO_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Plays the device reader on the folder or removable drive DRIVE."));
    parser.addPositionalArgument(QStringLiteral("DRIVE"),
                                 QStringLiteral("The root of the reader's drive; it must exist."));
    parser.addOptions(
        {ScenarioOption, CheckOption, FaultOption, ListFaultsOption, PairOption, InstantOption, SeedOption, LogOption});
    const QCommandLineOption helpOption = parser.addHelpOption();
    const QCommandLineOption versionOption = parser.addVersionOption();

    if (!parser.parse(QCoreApplication::arguments()))
        return complain(WrongCall, parser.errorText());
    if (parser.isSet(helpOption)) {
        QTextStream(stdout) << parser.helpText();
        return Success;
    }
    if (parser.isSet(versionOption)) {
        print(stdout, QStringLiteral("merivo-reader %1").arg(QCoreApplication::applicationVersion()));
        return Success;
    }
    return run(parser);
}

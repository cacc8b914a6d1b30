// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// What a report of all that merivo-host keeps by default costs, and how long the window stands still while it is made:
// five log files of 1 MiB, and traffic of 16 MiB, which is polling or, with --lists, lists of many pumps.

#include "bench/Report.h"
#include "bench/Machine.h"
#include "bench/TurnMeter.h"
#include "workbench/host/HostApplication.h"
#include "workbench/reader/ReaderFiles.h"
#include "workbench/reader/Traffic.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTimer>

#include <ctime>

namespace {

constexpr int LogFiles = 5;
constexpr int LogBytes = 1024 * 1024;
constexpr int PumpsOfAList = 2000;

/// A drive that tells of another status at each look, as many as fit into the limits.
bool writeTraffic(const QString& folder, bool asLists)
{
    const TrafficLimits limits;
    int next = 0;
    for (qint64 total = 0, file = 0; total + limits.fileBytes <= limits.totalBytes; total += limits.fileBytes, ++file) {
        QFile target(folder + QStringLiteral("/traffic-20260101-00000%1-000.jsonl").arg(file));
        if (!target.open(QIODevice::WriteOnly))
            return false;
        for (int ms = 0;; ms += 100) {
            QVector<Pump> pumps(asLists ? PumpsOfAList : 0);
            for (Pump& pump : pumps) {
                pump.serialNumber = QStringLiteral("MV-%1").arg(++next, 6, 10, QLatin1Char('0'));
                pump.name = QStringLiteral("Pump of %1").arg(next);
                pump.address = QStringLiteral("00:1E:42:%1:%2:%3")
                                   .arg(10 + next / 8100)
                                   .arg(10 + next / 90 % 90)
                                   .arg(10 + next % 90);
            }
            ReaderStatus status;
            status.header = QStringLiteral("QD17-C RemoteControl File 0001-%1").arg(++next, 6, 10, QLatin1Char('0'));
            status.command = QStringLiteral("BTREAD");
            status.word = QStringLiteral("running");
            const QByteArray lines =
                (asLists ? trafficLine({ms, QStringLiteral("MISC/DEVLIST.XML"), deviceListXml(pumps), {}})
                         : trafficLine({ms, QStringLiteral("MISCNoCommand.txt"), QByteArray(""), {}})) +
                trafficLine({ms, QStringLiteral("MISC/STATUS.TXT"), statusText(status), {}});
            if (target.pos() + lines.size() > limits.fileBytes)
                break;
            if (target.write(lines) != lines.size())
                return false;
        }
    }
    return true;
}

/// Through the host's own log, which lets the oldest files go.
bool writeLog(HostLog& log)
{
    const qint64 lines = qint64(LogFiles) * LogBytes / 100;
    for (int i = 0; i < lines; ++i)
        log.write(
            QStringLiteral("MerivoConnections"), QStringLiteral("mcp"),
            QStringLiteral("==> <[QD17-C RemoteControl File 0001-%1]: BTREAD, 2, 0, MV-204817> observed.").arg(i));
    return log.files().size() == LogFiles;
}

double processMilliseconds()
{
    return 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Report report(QStringLiteral("What a report of all that the host keeps costs"));
    report.addNumber(QStringLiteral("patients"), QStringLiteral("How many the database has."), 1000);
    const QCommandLineOption lists(QStringLiteral("lists"),
                                   QStringLiteral("The traffic is lists of many pumps and not polling."));
    report.parser.addOption(lists);
    report.parse();
    quietLog();

    const QTemporaryDir folder;
    HostOptions options;
    options.database = folder.filePath(QStringLiteral("host.sqlite"));
    options.diagnostics = folder.filePath(QStringLiteral("kept"));
    options.plugin = QStringLiteral(MERIVO_PLUGIN_FILE);
    HostApplication host;
    QString error;
    if (!host.start(options, &error))
        return benchmarkFailed(error);
    if (!writeTraffic(options.diagnostics, report.parser.isSet(lists)) || !writeLog(host.log()))
        return benchmarkFailed(QStringLiteral("log and traffic couldn't be written"));
    for (int i = 0; i < report.number(QStringLiteral("patients")); ++i)
        if (!host.database().addPatient(
                {QStringLiteral("P-%1").arg(i), {QStringLiteral("Family%1").arg(i), {}, {}, {}}}))
            return benchmarkFailed(host.database().errorText());
    host.window().refresh();
    QCoreApplication::processEvents();

    TurnMeter meter([] { return QString(); });
    if (!meter.isMeasuring())
        return benchmarkFailed(QStringLiteral("this event loop can't be measured"));
    for (const bool withPersonalData : {true, false}) {
        const QString kind = withPersonalData ? QStringLiteral("as it is") : QStringLiteral("anonymised");
        const QString path = folder.filePath(kind + QStringLiteral(".zip"));
        meter.turns.clear();
        meter.keep(true);
        QTimer::singleShot(0, &host.window(), [&] { Q_EMIT host.window().reportRequested(path, withPersonalData); });
        // The notice in the log comes once the archive is there.
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, &app, [&] {
            if (host.log().contains(path))
                QCoreApplication::quit();
        });
        look.start(20);
        const double processor = processMilliseconds();
        const auto start = BenchClock::now();
        QCoreApplication::exec();
        const double time = millisecondsSince(start);
        meter.keep(false);
        if (!QFileInfo::exists(path))
            return benchmarkFailed(QStringLiteral("the report wasn't written"));
        std::vector<double> turns;
        for (const TurnMeter::Turn& turn : meter.turns)
            turns.push_back(turn.milliseconds);
        const QString unit = QStringLiteral("ms");
        report.tell(QStringLiteral("%1: from the request to the notice").arg(kind), time, unit);
        report.tell(QStringLiteral("%1: processor time").arg(kind), processMilliseconds() - processor, unit);
        report.add(QStringLiteral("%1: the loop stands still at most").arg(kind), percentile(turns, 1), unit, 100);
        report.tell(QStringLiteral("%1: peak memory of the process so far").arg(kind),
                    static_cast<double>(peakMemory()) / 1024, QStringLiteral("MiB"));
    }
    return report.print();
}

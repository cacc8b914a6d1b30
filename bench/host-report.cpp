// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The cost of a report with all data that merivo-host keeps by default, and how long it blocks the window: five log
// files of 1 MiB, and 16 MiB of traffic, which is polling or, with --pumps, device lists.

#include "bench/Machine.h"
#include "bench/Report.h"
#include "bench/TurnMeter.h"
#include "tools/host/HostApplication.h"
#include "tools/reader/ReaderFiles.h"
#include "tools/traffic/Traffic.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTimer>

#include <ctime>

namespace {

constexpr int LogFiles = 5;
constexpr int LogBytes = 1024 * 1024;

/// Writes traffic up to the limits, in which each step has a new status, and a new list if there are pumps.
bool writeTraffic(const QString& folder, int pumpsOfAList)
{
    const TrafficLimits limits;
    int next = 0;
    for (qint64 total = 0, file = 0; total + limits.fileBytes <= limits.totalBytes; total += limits.fileBytes, ++file) {
        QFile target(folder + QString("/traffic-20260101-00000%1-000.jsonl").arg(file));
        if (!target.open(QIODevice::WriteOnly))
            return false;
        for (int ms = 0;; ms += 100) {
            QVector<Pump> pumps(pumpsOfAList);
            for (Pump& pump : pumps) {
                pump.serialNumber = QString("MV-%1").arg(++next, 6, 10, QLatin1Char('0'));
                pump.name = QString("Pump of %1").arg(next);
                pump.address = QString::asprintf("00:1E:42:%02X:%02X:%02X", next >> 16, next >> 8 & 255, next & 255);
            }
            ReaderStatus status;
            status.header = QString("QD17-C RemoteControl File 0001-%1").arg(++next, 6, 10, QLatin1Char('0'));
            status.command = "BTREAD";
            status.word = "running";
            const QByteArray lines =
                (pumps.isEmpty() ? QByteArray() : trafficLine({ms, "MISC/DEVLIST.XML", deviceListXml(pumps), {}})) +
                trafficLine({ms, "MISC/STATUS.TXT", statusText(status), {}});
            if (target.pos() + lines.size() > limits.fileBytes)
                break;
            if (target.write(lines) != lines.size())
                return false;
        }
    }
    return true;
}

/// Writes with the host's log, which deletes the oldest files.
bool writeLog(HostLog& log)
{
    for (int i = 0; i < LogFiles * LogBytes / 100; ++i)
        log.write("MerivoConnections", "mcp",
                  QString("==> <[QD17-C RemoteControl File 0001-%1]: BTREAD, 2, 0, MV-204817> observed.").arg(i));
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
    Report report("Cost of a report with all data that the host keeps",
                  {{"patients", 1000, "Patients in the database."},
                   {"pumps", 0, "Pumps in each device list of the traffic, or 0 for traffic of polling."}});
    const QTemporaryDir folder;
    HostOptions options;
    options.database = folder.filePath("host.sqlite");
    options.diagnostics = folder.filePath("kept");
    options.plugin = MERIVO_PLUGIN_FILE;
    HostApplication host;
    QString error;
    if (!host.start(options, &error))
        return benchmarkFailed(error);
    if (!writeTraffic(options.diagnostics, report.number("pumps")) || !writeLog(host.log()))
        return benchmarkFailed("log and traffic can't be written");
    for (int i = 0; i < report.number("patients"); ++i) {
        if (!host.database().addPatient({QString("P-%1").arg(i), {QString("Family%1").arg(i), {}, {}, {}}}))
            return benchmarkFailed(host.database().errorText());
    }
    host.window().refresh();
    QCoreApplication::processEvents();

    TurnMeter meter([] { return QString(); });
    if (!meter.isMeasuring())
        return benchmarkFailed("this event loop can't be measured");
    for (const bool withPersonalData : {true, false}) {
        const QString kind = withPersonalData ? "unchanged: " : "anonymised: ";
        const QString path = folder.filePath(withPersonalData ? "plain.zip" : "anonymised.zip");
        meter.turns.clear();
        meter.keep(true);
        QTimer::singleShot(0, &host.window(), [&] { Q_EMIT host.window().reportRequested(path, withPersonalData); });
        QTimer check; // the log names the archive once it is written
        QObject::connect(&check, &QTimer::timeout, &app, [&] {
            if (host.log().contains(path))
                QCoreApplication::quit();
        });
        check.start(20);
        const double processor = processMilliseconds();
        report.note(kind + "from the request to the log record", millisecondsOf([] { QCoreApplication::exec(); }),
                    "ms");
        meter.keep(false);
        if (!QFileInfo::exists(path))
            return benchmarkFailed("the report wasn't written");
        report.note(kind + "processor time", processMilliseconds() - processor, "ms");
        report.add(kind + "the event loop is blocked, maximum", percentile(lengthsOf(meter.turns), 1), "ms", 100);
        report.note(kind + "peak memory of the process so far", static_cast<double>(peakMemory()) / 1024, "MiB");
    }
    return report.print();
}

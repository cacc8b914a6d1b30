// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The cost of log records on merivo-host's GUI thread, from one to a thousand per second, and whether any is lost.
// Another thread writes them with the plug-in's logger, as the polling thread does.

#include "base/Logger.h"
#include "bench/Machine.h"
#include "bench/Report.h"
#include "tools/host/HostApplication.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <array>
#include <cmath>
#include <thread>

namespace {

constexpr std::array<int, 4> Rates{1, 10, 100, 1000};
constexpr int FullTable = 20000;                     ///< the most records that the host's table keeps
const char* const Mark = "status of the benchmark."; ///< not in any of the host's own records
const QString Message = QString("=?= <%1; BTREAD; running; ; 0> ") + Mark;

/// Returns the percentage of its time that the GUI thread works while records are written at that rate.
double shareOfGuiThread(Logger* logger, int rate, int seconds)
{
    const auto start = BenchClock::now();
    const double before = threadMilliseconds();
    std::thread writer([=] {
        for (int i = 0; i < rate * seconds; ++i) {
            std::this_thread::sleep_until(start + std::chrono::microseconds(1000000LL * i / rate));
            logger->write(Message.arg(i), "mcp", {}, {});
        }
    });
    QTimer::singleShot(1000 * seconds, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    writer.join();
    QCoreApplication::sendPostedEvents(); // queued records count too
    return 100 * (threadMilliseconds() - before) / millisecondsSince(start);
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Report report("Cost of log records on the host's GUI thread", {{"seconds", 5, "Duration of each rate."}});
    const int seconds = report.number("seconds");
    const QString share = "GUI thread's share";
    if (threadMilliseconds() < 0) {
        report.addMissing(share, "no processor time of a thread here");
        return report.print();
    }

    const QTemporaryDir folder;
    QFile file(folder.filePath("host.log"));
    HostApplication host;
    QString error;
    if (!host.log().openFile(file.fileName(), &error) || !host.database().open(folder.filePath("host.sqlite")))
        return benchmarkFailed(error + host.database().errorText());
    HostServices services(host.log(), host.database());
    Logger* logger = Logger::instance(nullptr, &services);
    host.window().refresh();
    host.window().show();
    QCoreApplication::processEvents();

    const double idle = shareOfGuiThread(logger, 0, seconds);
    qint64 written = 0;
    Growth shares(share, "lines per second", "%");
    for (const int rate : Rates) {
        shares.add(rate, shareOfGuiThread(logger, rate, seconds) - idle);
        written += qint64(rate) * seconds;
    }
    for (; written < FullTable; ++written)
        logger->write(Message, "mcp", {}, {});
    const double full = shareOfGuiThread(logger, Rates.back(), seconds) - idle;
    written += qint64(Rates.back()) * seconds;

    report.note(share + ", no line", idle, "%");
    shares.addTo(report, 1.3);
    report.add(share + ", 1,000 lines per second, table full", full, "%", 50);
    const double logged = file.open(QIODevice::ReadOnly) ? file.readAll().count(Mark) : 0;
    report.add("lines lost or repeated", std::abs(static_cast<double>(written) - logged), "lines", 0);
    return report.print();
}

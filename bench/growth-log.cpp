// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// What log records cost merivo-host's GUI thread, from one to a thousand a second, and whether any is lost. Another
// thread writes them through the plug-in's logger, as the polling thread does; the host's window shows them and its
// file takes them.

#include "bench/Growth.h"
#include "bench/Machine.h"
#include "plugin/session/Logger.h"
#include "workbench/host/HostApplication.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <array>
#include <cmath>

namespace {

constexpr std::array<int, 4> Rates{1, 10, 100, 1000};
constexpr int FullTable = 20000;                     ///< records, as many as the host's table keeps
const char* const Mark = "status of the benchmark."; ///< tells our messages from the host's own in the log's file
const QString Message = QStringLiteral("=?= <%1; BTREAD; running; ; 0> ") + QLatin1String(Mark);

/// Writes records at that rate, evenly, in a thread of its own.
class Writer final : public QThread
{
public:
    Writer(Logger* logger, int rate, int records)
        : m_logger(logger)
        , m_rate(rate)
        , m_records(records)
    {}

private:
    void run() override
    {
        const auto start = BenchClock::now();
        for (int i = 0; i < m_records; ++i) {
            const double early = 1000.0 * i / m_rate - millisecondsSince(start);
            if (early > 0)
                usleep(static_cast<unsigned long>(1000 * early));
            m_logger->write(Message.arg(i), QStringLiteral("mcp"), {}, {});
        }
    }

    Logger* m_logger;
    const int m_rate;
    const int m_records;
};

/// The share of the GUI thread's time that it works in that time, in percent, while records come in at that rate.
double shareOfGuiThread(Logger* logger, int rate, int seconds)
{
    Writer writer(logger, qMax(1, rate), rate * seconds);
    const auto start = BenchClock::now();
    const double before = threadMilliseconds();
    writer.start();
    QTimer::singleShot(1000 * seconds, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    writer.wait();
    // What is still on its way at the end of the time counts too.
    QCoreApplication::sendPostedEvents();
    return 100 * (threadMilliseconds() - before) / millisecondsSince(start);
}

qint64 messagesIn(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().count(Mark) : -1;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Report report(QStringLiteral("What log records cost the host's GUI thread"));
    report.addNumber(QStringLiteral("seconds"), QStringLiteral("How long each rate lasts."), 5);
    report.parse();
    const int seconds = report.number(QStringLiteral("seconds"));
    quietLog();
    const QString share = QStringLiteral("GUI thread's share");
    if (threadMilliseconds() < 0) {
        report.lack(share, QStringLiteral("the system doesn't tell a thread's time"));
        return report.print();
    }

    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("host.log"));
    HostApplication host;
    QString error;
    if (!host.log().openFile(file, &error) || !host.database().open(folder.filePath(QStringLiteral("host.sqlite"))))
        return benchmarkFailed(error + host.database().errorText());
    HostServices services(host.log(), host.database());
    Logger* logger = Logger::instance(nullptr, &services);
    host.window().refresh();
    host.window().show();
    QCoreApplication::processEvents();

    const QString things = QStringLiteral("lines a second");
    const QString unit = QStringLiteral("us");
    const double idle = shareOfGuiThread(logger, 0, seconds);
    qint64 written = 0;
    Growth shares(share, things, QStringLiteral("%"));
    std::vector<double> costs;
    for (const int rate : Rates) {
        const double taken = shareOfGuiThread(logger, rate, seconds);
        written += qint64(rate) * seconds;
        shares.add(rate, taken - idle);
        costs.push_back((taken - idle) * 1e4 / rate); // one percent of a second is 10,000 us
    }
    for (; written < FullTable; ++written)
        logger->write(Message, QStringLiteral("mcp"), {}, {});
    const double full = shareOfGuiThread(logger, Rates.back(), seconds) - idle;
    written += qint64(Rates.back()) * seconds;

    shares.tell(report, 1.3);
    report.add(share + QStringLiteral(", 1,000 lines a second, table full"), full, QStringLiteral("%"), 50);
    report.tell(share + QStringLiteral(", no line"), idle, QStringLiteral("%"));
    for (std::size_t i = 0; i < Rates.size(); ++i)
        report.tell(QStringLiteral("one line, at %1 a second").arg(Rates.at(i)), costs.at(i), unit);
    report.tell(QStringLiteral("one line, at 1,000 a second, table full"), full * 1e4 / Rates.back(), unit);
    report.add(QStringLiteral("lines lost, or there twice"), std::abs(static_cast<double>(written - messagesIn(file))),
               QStringLiteral("lines"), 0);
    return report.print();
}

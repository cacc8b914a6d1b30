// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The time from a "done" that a reader writes to finished() on the GUI thread.

#include "bench/Report.h"
#include "plugin/session/Logger.h"
#include "reader/CommandFileWriter.h"
#include "reader/StatusFileParser.h"
#include "support/ReaderFolder.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSaveFile>
#include <QTimer>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <thread>

namespace {

constexpr std::chrono::milliseconds TickPeriod{100};
constexpr std::chrono::seconds Patience{10};

/// A reader's last word on a command: written beside the status file and renamed to it at @p moment, from a thread of
/// its own. The time at which the renaming began is there after join().
class LastWord final
{
public:
    LastWord(const QString& statusFile, const QByteArray& text, BenchClock::time_point moment)
        : m_thread([this, statusFile, text, moment] {
            QSaveFile file(statusFile);
            const bool written = file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
            std::this_thread::sleep_until(moment);
            m_begin = BenchClock::now();
            m_good = written && file.commit();
        })
    {}

    bool join()
    {
        m_thread.join();
        return m_good;
    }
    BenchClock::time_point begin() const { return m_begin; }

private:
    BenchClock::time_point m_begin;
    bool m_good = false;
    std::thread m_thread; // last, as it uses the others
};

/// Milliseconds from the renaming to finished(), for a "done" that comes @p phase after a tick; below 0 on a failure.
double deliveryTime(StatusFileParser* parser, const QByteArray& text, BenchClock::duration phase)
{
    QEventLoop loop;
    std::unique_ptr<LastWord> word;
    BenchClock::time_point end;
    bool good = false;
    QObject::connect(parser, &StatusFileParser::progress, &loop, [&] {
        // The first tick is just over. One more passes, so that the run is in its stride.
        if (!word) {
            word = std::make_unique<LastWord>(parser->m_path + QStringLiteral("/STATUS.TXT"), text,
                                              BenchClock::now() + TickPeriod + phase);
        }
    });
    QObject::connect(parser, &StatusFileParser::finished, &loop, [&](bool success) {
        end = BenchClock::now();
        good = success;
        loop.quit();
    });
    QObject::connect(parser, &StatusFileParser::timeout, &loop, &QEventLoop::quit);
    QTimer::singleShot(Patience, &loop, &QEventLoop::quit);

    CommandFileWriter::instance()->read(QStringLiteral("1234567"));
    parser->start(440, 20, 5);
    loop.exec();
    if (!word || !word->join() || !good)
        return -1;
    return std::chrono::duration<double, std::milli>(end - word->begin()).count();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    Report report(QStringLiteral("From a \"done\" in a plain folder to finished() on the GUI thread"));
    report.addNumber(QStringLiteral("runs"), QStringLiteral("Commands to follow to their end."), 200);
    report.parse();
    const int runs = report.number(QStringLiteral("runs"));

    quietLog();
    Logger::instance(nullptr, nullptr);
    const ReaderFolder reader;
    if (!reader.writeStatus(QStringLiteral("Reader status 0"), QStringLiteral("ABORT"), QStringLiteral("done")))
        return benchmarkFailed(QStringLiteral("can't write to %1").arg(reader.drive()));
    const std::unique_ptr<CommandFileWriter> writer(CommandFileWriter::create(reader.drive()));
    const std::unique_ptr<StatusFileParser> parser(StatusFileParser::create(reader.drive()));

    // The phases lie evenly over the time between two ticks and come in a random, but fixed order.
    std::vector<int> order(static_cast<std::size_t>(runs));
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), std::mt19937(1)); // NOLINT(cert-msc51-cpp): the same at each call
    std::vector<double> times;
    for (const int place : order) {
        const BenchClock::duration phase = BenchClock::duration(TickPeriod) * place / runs;
        const QByteArray text = ReaderFolder::statusText(QStringLiteral("Reader status %1").arg(times.size() + 1),
                                                         QStringLiteral("BTREAD"), QStringLiteral("done"));
        const double time = deliveryTime(parser.get(), text, phase);
        if (time < 0)
            return benchmarkFailed(QStringLiteral("run %1 didn't end with finished(true)").arg(times.size() + 1));
        times.push_back(time);
    }

    const QString unit = QStringLiteral("ms");
    report.add(QStringLiteral("done to finished(), median of %1 runs").arg(runs), percentile(times, 0.5), unit, 60);
    report.add(QStringLiteral("done to finished(), maximum"), percentile(times, 1), unit, 125);
    report.tell(QStringLiteral("done to finished(), minimum"), percentile(times, 0), unit);
    return report.print();
}

// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// One forced read of the status file, compared with the bare system calls, and the time from a "done" that a reader
// writes to finished() on the GUI thread.

#include "base/Logger.h"
#include "bench/Machine.h"
#include "bench/Report.h"
#include "readerlink/CommandFileWriter.h"
#include "readerlink/StatusFileParser.h"
#include "support/ReaderFolder.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QSaveFile>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <thread>

namespace {

constexpr std::chrono::milliseconds TickPeriod{100};
constexpr std::chrono::seconds Timeout{10};
constexpr int CallsPerRound = 20;

/// Returns an operation that returns how many microseconds one call takes, or -1 if one fails.
template <typename Operation>
auto microsecondsOf(const Operation& operation)
{
    return [&operation] {
        bool isGood = true;
        const double time = millisecondsOf([&] {
            for (int i = 0; i < CallsPerRound; ++i)
                isGood &= operation();
        });
        return isGood ? 1000 * time / CallsPerRound : -1;
    };
}

void compareReads(Report& report, const ReaderFolder& reader, StatusFileParser* parser)
{
    const QByteArray trigger = QFile::encodeName(reader.drive() + "/MISCNoCommand.txt");
    const QByteArray status = QFile::encodeName(reader.misc() + "/STATUS.TXT");
    const auto ours = [parser] {
        return !parser->readStatus().header.isEmpty();
    };
    const auto bare = [&trigger, &status] {
        return bareRead(trigger.constData(), status.constData());
    };
    const QString what = "readStatus() / bare system calls";
    if (const auto result = compare(report.number("rounds"), microsecondsOf(ours), microsecondsOf(bare)))
        result->addTo(report, what, "us", 2.5);
    else
        report.addMissing(what, "not supported on this system");
}

/// Returns the milliseconds from the renaming of a "done", @p phase after a tick, to finished(); -1 on a failure.
double deliveryTime(const ReaderFolder& reader, StatusFileParser* parser, const QByteArray& text,
                    BenchClock::duration phase)
{
    QEventLoop loop;
    std::thread writer; // the reader
    BenchClock::time_point begin;
    BenchClock::time_point end;
    bool isWritten = false;
    bool isDone = false;
    QObject::connect(parser, &StatusFileParser::progress, &loop, [&] {
        if (writer.joinable())
            return;
        // A full tick after the first one, so that the polling has settled.
        writer = std::thread([&, moment = BenchClock::now() + TickPeriod + phase] {
            QSaveFile file(reader.misc() + "/STATUS.TXT");
            isWritten = file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
            std::this_thread::sleep_until(moment);
            begin = BenchClock::now();
            isWritten = isWritten && file.commit();
        });
    });
    QObject::connect(parser, &StatusFileParser::finished, &loop, [&](bool success) {
        end = BenchClock::now();
        isDone = success;
        loop.quit();
    });
    QObject::connect(parser, &StatusFileParser::timeout, &loop, &QEventLoop::quit);
    QTimer::singleShot(Timeout, &loop, &QEventLoop::quit);

    CommandFileWriter::instance()->read("1234567");
    parser->start(440, 20, 5);
    loop.exec();
    if (!writer.joinable())
        return -1;
    writer.join();
    return isDone && isWritten ? std::chrono::duration<double, std::milli>(end - begin).count() : -1;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    Report report("Forced read and delivery of a status",
                  {{"rounds", 2000, "Rounds of 20 reads each way."}, {"commands", 200, "Commands to poll."}});
    qputenv("TMPDIR", QFile::encodeName(memoryFolder()));
    Logger::instance(nullptr, nullptr);
    const ReaderFolder reader;
    if (!reader.writeStatus("Reader status 1", "BTREAD", "running", "1234567"))
        return benchmarkFailed("can't write to " + reader.drive());
    const std::unique_ptr<CommandFileWriter> writer(CommandFileWriter::create(reader.drive()));
    const std::unique_ptr<StatusFileParser> parser(StatusFileParser::create(reader.drive()));
    compareReads(report, reader, parser.get());

    // The phases are spread evenly between two ticks, in a random but fixed order.
    const int commands = report.number("commands");
    std::vector<int> places(static_cast<std::size_t>(commands));
    std::iota(places.begin(), places.end(), 0);
    std::shuffle(places.begin(), places.end(), std::mt19937(1)); // NOLINT(cert-msc51-cpp)
    std::vector<double> times;
    for (const int place : places) {
        const QByteArray text =
            ReaderFolder::statusText(QString("Reader status %1").arg(times.size() + 2), "BTREAD", "done");
        times.push_back(deliveryTime(reader, parser.get(), text, BenchClock::duration(TickPeriod) * place / commands));
        if (times.back() < 0)
            return benchmarkFailed(QString("command %1 didn't end with finished(true)").arg(times.size()));
    }
    report.add("\"done\" to finished(), median", percentile(times, 0.5), "ms", 60);
    report.add("\"done\" to finished(), maximum", percentile(times, 1), "ms", 125);
    report.note("\"done\" to finished(), minimum", percentile(times, 0), "ms");
    return report.print();
}

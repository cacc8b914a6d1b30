// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// Polls for hours and checks that each tick writes the trigger and reads the status, that each change of the status is
// seen at the next tick, and that nothing grows.

#include "base/Logger.h"
#include "bench/endurance/ResourceCounts.h"
#include "readerlink/CommandFileWriter.h"
#include "readerlink/StatusFileParser.h"
#include "support/ReaderFolder.h"
#include "support/VirtualTime.h"

#include <QApplication>
#include <QFileInfo>
#include <QLoggingCategory>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr int TicksPerHour = 36000;
constexpr qint64 AllowedGrowthKiB = 256; // after the first hour
constexpr double AllowedPauseMs = 105;

/// Counts the plug-in's accesses to the reader's files, and changes the status when the trigger file is opened, as a
/// drive does. Polling thread only.
class WatchedDrive final
{
public:
    WatchedDrive(const ReaderFolder& reader, int wantedTicks)
        : m_reader(reader)
        , m_wantedTicks(wantedTicks)
    {}

    void opened(const char* path)
    {
        const char* name = std::strrchr(path, '/');
        if (name && std::strcmp(name, "/MISCNoCommand.txt") == 0)
            triggered();
        else if (name && std::strcmp(name, "/STATUS.TXT") == 0)
            outOfOrder += ++reads != triggers ? 1 : 0;
    }

    /// Reads the number of a status from a record of the plug-in's log.
    void recorded(const QString& record)
    {
        if (record.contains("> observed."))
            seen = record.section("[Status ", 1).section(']', 0, 0).toInt();
    }

    int triggers = 0;
    int reads = 0;
    int ticks = 0; ///< counted by the receiver of progress()
    int changes = 0;
    int seen = 0;          ///< the latest status in the log; 0 if there is none
    int outOfOrder = 0;    ///< accesses in another order than trigger, status, tick
    int missed = 0;        ///< changes that weren't seen at the next tick
    double maxPauseMs = 0; ///< between two triggers

private:
    void triggered()
    {
        outOfOrder += triggers != reads || triggers != ticks ? 1 : 0;
        missed += seen != changes ? 1 : 0;
        const double now = VirtualTime::milliseconds();
        if (triggers > 0)
            maxPauseMs = std::max(maxPauseMs, now - m_lastTrigger);
        m_lastTrigger = now;
        ++triggers;
        if (triggers != m_wantedTicks && m_random() % 20 != 0)
            return;
        ++changes;
        // By another name and file descriptor, so that opened() isn't called for it.
        const bool isWritten = m_reader.writeStatus(QString("Status %1").arg(changes), "BTREAD",
                                                    triggers == m_wantedTicks ? "done" : "running");
        if (!isWritten)
            qFatal("can't write the status");
    }

    const ReaderFolder& m_reader;
    const int m_wantedTicks;
    std::mt19937 m_random{1}; // NOLINT(cert-msc51-cpp): the same ticks each time
    double m_lastTrigger = 0;
};

std::atomic<WatchedDrive*> s_drive{nullptr};

void takeRecord(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (WatchedDrive* drive = s_drive)
        drive->recorded(text);
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qUtf8Printable(text));
}

/// Processes events until @p parser has ended. Returns true if it succeeded.
bool poll(StatusFileParser* parser, WatchedDrive& drive, int hours, qint64* firstHourKiB)
{
    QObject receiver;
    bool isDone = false;
    QObject::connect(
        parser, &StatusFileParser::progress, parser, [&drive] { ++drive.ticks; }, Qt::DirectConnection);
    int progressed = 1;
    QObject::connect(parser, &StatusFileParser::progress, &receiver, [&progressed, firstHourKiB] {
        if (++progressed == TicksPerHour)
            *firstHourKiB = ResourceCounts::now().residentKiB;
    });
    QObject::connect(parser, &StatusFileParser::finished, &receiver, [&isDone](bool success) {
        isDone = success;
        QCoreApplication::quit();
    });
    QObject::connect(parser, &StatusFileParser::timeout, &receiver, &QCoreApplication::quit);
    CommandFileWriter::instance()->read("1234567");
    parser->start(hours * 3600 * 2, 0, 0);
    s_drive = &drive; // after the snapshot, and before the first tick, which needs the event loop
    QCoreApplication::exec();
    s_drive = nullptr;
    return isDone && progressed == hours * TicksPerHour;
}

} // namespace

// Qt opens its files with this call. The program's symbols precede those of the C library.
extern "C" Q_DECL_EXPORT int open64(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (WatchedDrive* drive = s_drive)
        drive->opened(path);
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

int main(int argc, char** argv)
{
    const int hours = argc == 2 ? std::atoi(argv[1]) : 0;
    if (hours < 1 || hours > 100) {
        std::fprintf(stderr, "usage: endurance-polling HOURS, at most 100\n");
        return 2;
    }
    VirtualTime::start();
    if (QFileInfo("/dev/shm").isWritable())
        qputenv("TMPDIR", "/dev/shm");
    QCoreApplication app(argc, argv);
    watchObjects();
    QLoggingCategory::setFilterRules("*.debug=false\nplugin.merivoconnections.debug=true");
    qInstallMessageHandler(takeRecord);

    const int ticks = hours * TicksPerHour;
    const ReaderFolder reader;
    reader.writeStatus("Status 0", "BTREAD", "done");
    WatchedDrive drive(reader, ticks);
    // Creates what is kept after its first use: the plug-in's logger, and the objects for waiting.
    Logger::instance(nullptr, nullptr);
    QTimer::singleShot(1, &app, &QCoreApplication::quit);
    QCoreApplication::exec();
    const ResourceCounts start = ResourceCounts::now();
    qint64 firstHourKiB = 0;
    bool isDone = false;
    {
        const std::unique_ptr<CommandFileWriter> writer(CommandFileWriter::create(reader.drive()));
        const std::unique_ptr<StatusFileParser> parser(StatusFileParser::create(reader.drive()));
        isDone = poll(parser.get(), drive, hours, &firstHourKiB);
    }
    QTimer::singleShot(1000, &app, &QCoreApplication::quit); // the parser's watcher is deleted after a pause
    QCoreApplication::exec();
    const ResourceCounts end = ResourceCounts::settled(start);
    const QString difference = end.differenceFrom(start);
    const qint64 growth = end.residentKiB - firstHourKiB;
    std::printf("%.2f hours of virtual time; longest pause between two ticks: %.3f ms (at most %.0f)\n",
                VirtualTime::milliseconds() / 3600000, drive.maxPauseMs, AllowedPauseMs);
    std::printf("%d ticks, %s: trigger written %d times, status read %d times, out of order %d times\n", ticks,
                isDone ? "all reported" : "NOT all reported", drive.triggers, drive.reads, drive.outOfOrder);
    std::printf("Changes of the status: %d; not seen at the next tick: %d\n", drive.changes, drive.missed);
    std::printf(
        "Memory after the first hour: %lld KiB, at the end: %+lld KiB (at most %lld)\nResources not released: %s\n",
        firstHourKiB, growth, AllowedGrowthKiB, difference.isEmpty() ? "nothing" : qUtf8Printable(difference));
    const bool isMet = isDone && drive.triggers == ticks && drive.reads == ticks && drive.outOfOrder == 0 &&
                       drive.missed == 0 && drive.seen == drive.changes && drive.maxPauseMs <= AllowedPauseMs &&
                       growth <= AllowedGrowthKiB && difference.isEmpty();
    std::printf("%s\n", isMet ? "PASS" : "FAIL");
    return isMet ? 0 : 1;
}

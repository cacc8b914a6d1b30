// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// A polling run of eight hours: whether each tick makes the drive show its newest status and reads it, whether each
// change of the status is seen at the next tick, and whether anything grows.

#include "bench/endurance/Holdings.h"
#include "bench/endurance/VirtualTime.h"
#include "plugin/session/Logger.h"
#include "reader/CommandFileWriter.h"
#include "reader/StatusFileParser.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <random>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr int TicksPerHour = 36000;
constexpr int MostHours = 100;           // a run's limit is a number of milliseconds
constexpr qint64 AllowedGrowthKiB = 256; // from the end of the first hour on
constexpr double AllowedPauseMs = 105;

/// The reader, and the book-keeping of what the plug-in does to its files. It acts when the trigger file is opened, as
/// a drive shows a new status then and not before. Lives on the polling thread while a run goes on.
class WatchedDrive final
{
    Q_DISABLE_COPY_MOVE(WatchedDrive)

public:
    WatchedDrive(const QString& folder, int ticks, quint32 seed)
        : m_misc((folder + QStringLiteral("/MISC")).toLocal8Bit())
        , m_ticks(ticks)
        , m_random(seed)
    {
        QDir().mkpath(folder + QStringLiteral("/MISC"));
        writeStatus("done");
    }

    /// From now on the reader works on a command, for so many ticks.
    void begin() { m_begun = true; }

    void opened(const char* path)
    {
        const char* name = std::strrchr(path, '/');
        if (!name)
            return;
        if (std::strcmp(name, "/MISCNoCommand.txt") == 0)
            triggered();
        else if (std::strcmp(name, "/STATUS.TXT") == 0)
            read();
    }

    /// A record of the plug-in's log.
    void recorded(const QString& record)
    {
        const QString label = QStringLiteral("[Status ");
        const int place = record.indexOf(label);
        if (place >= 0 && record.contains(QLatin1String("> observed.")))
            m_seen = record.mid(place + label.size()).section(QLatin1Char(']'), 0, 0).toInt();
    }

    /// A tick that lets the run go on is over.
    void ticked() { ++m_finishedTicks; }
    bool isLastSeen() const { return m_seen == m_shown; }

    int triggers = 0;
    int reads = 0;
    int changes = 0;
    int outOfTurn = 0;         ///< opened in another order than trigger, status, tick
    int missed = 0;            ///< changes that weren't seen at the tick they were made for
    double longestPauseMs = 0; ///< between two triggers

private:
    void triggered()
    {
        if (!m_begun)
            return;
        if (triggers != reads || triggers != m_finishedTicks)
            ++outOfTurn;
        if (m_seen != m_shown)
            ++missed;
        const double now = VirtualTime::milliseconds();
        if (triggers > 0)
            longestPauseMs = std::max(longestPauseMs, now - m_lastTrigger);
        m_lastTrigger = now;
        ++triggers;
        const bool isLast = triggers == m_ticks;
        if (isLast || m_random() % 20 == 0) {
            ++changes;
            writeStatus(isLast ? "done" : "running");
        }
    }

    void read()
    {
        if (!m_begun)
            return;
        ++reads;
        if (reads != triggers)
            ++outOfTurn;
    }

    /// In place of the old one in one step, past the watched calls.
    void writeStatus(const char* word)
    {
        ++m_shown;
        if (!m_begun)
            m_seen = m_shown;
        char text[128];
        const int size = std::snprintf(text, sizeof text,
                                       "Status %d\nCmd=BTREAD\nStatus  = %s\nResult  = \nError -0.\n", m_shown, word);
        const QByteArray next = m_misc + "/STATUS.NEW";
        const long file = syscall(SYS_openat, AT_FDCWD, next.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (file < 0 || ::write(static_cast<int>(file), text, static_cast<std::size_t>(size)) != size)
            qFatal("can't write %s", next.constData());
        close(static_cast<int>(file));
        std::rename(next.constData(), (m_misc + "/STATUS.TXT").constData());
    }

    const QByteArray m_misc;
    const int m_ticks;
    std::mt19937 m_random;
    std::atomic<bool> m_begun{false};
    int m_shown = 0; ///< the number in the newest status
    int m_seen = 0;  ///< the number in the latest one that the plug-in logged
    int m_finishedTicks = 0;
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

void print(const QString& label, const Holdings& holdings)
{
    std::printf("%12s %10lld %10lld %6d %8d %7d %9d\n", qUtf8Printable(label), holdings.residentKiB,
                holdings.allocatedKiB, holdings.files, holdings.threads, holdings.timers, holdings.objects);
    std::fflush(stdout);
}

/// Whether all was kept; prints the verdict.
bool tell(const WatchedDrive& drive, int ticks, int progressed, int successes, const Holdings& start,
          const Holdings& afterFirstHour, const Holdings& end)
{
    std::printf("\n%.2f hours of the plug-in's time in %.0f s; longest pause between two ticks: %.3f ms\n",
                VirtualTime::milliseconds() / 3600000, VirtualTime::realMilliseconds() / 1000, drive.longestPauseMs);
    std::printf(
        "Ticks: %d wanted; %d times progress and %d times the end; trigger written %d times, status read %d times, "
        "out of turn %d times\n",
        ticks, progressed, successes, drive.triggers, drive.reads, drive.outOfTurn);
    std::printf("Changes of the status: %d, not seen at their tick: %d\n", drive.changes, drive.missed);
    const qint64 growth = end.residentKiB - afterFirstHour.residentKiB;
    std::printf("Memory at the end, compared with the first hour: %+lld KiB, wanted: at most %lld\n", growth,
                AllowedGrowthKiB);
    const QString difference = end.differenceFrom(start);
    std::printf("Left behind: %s\n", difference.isEmpty() ? "nothing" : qUtf8Printable(difference));

    const bool kept = progressed == ticks - 1 && successes == 1 && drive.triggers == ticks && drive.reads == ticks &&
                      drive.outOfTurn == 0 && drive.missed == 0 && drive.isLastSeen() &&
                      drive.longestPauseMs <= AllowedPauseMs && growth <= AllowedGrowthKiB && difference.isEmpty();
    std::printf("%s\n", kept ? "kept" : "NOT KEPT");
    return kept;
}

} // namespace

// Qt opens its files by this call. The program's symbols come before those of the C library.
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
    VirtualTime::start();
    QCoreApplication app(argc, argv);
    watchObjects();
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Polls a reader for eight hours, in a clock of its own."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("hours"), QStringLiteral("How long."), QStringLiteral("number"), QStringLiteral("8")},
        {QStringLiteral("seed"), QStringLiteral("Of the ticks at which the status changes."), QStringLiteral("number"),
         QStringLiteral("1")},
    });
    parser.process(app);
    const int hours = parser.value(QStringLiteral("hours")).toInt();
    if (hours < 1 || hours > MostHours) {
        std::fprintf(stderr, "endurance-polling: --hours takes a whole number from 1 to %d\n", MostHours);
        return 2;
    }
    const int ticks = hours * TicksPerHour;
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\nplugin.merivoconnections.debug=true"));
    qInstallMessageHandler(takeRecord);

    const QString inMemory = QStringLiteral("/dev/shm");
    const QTemporaryDir folder((QFileInfo(inMemory).isWritable() ? inMemory : QDir::tempPath()) +
                               QStringLiteral("/endurance-XXXXXX"));
    WatchedDrive drive(folder.path(), ticks, parser.value(QStringLiteral("seed")).toUInt());

    std::printf("%12s %10s %10s %6s %8s %7s %9s\n", "tick", "resident", "allocated", "files", "threads", "timers",
                "QObjects");
    // What stays from the first use on: the plug-in's logger, and what the event loop and the clock wait with.
    Logger::instance(nullptr, nullptr);
    QTimer::singleShot(1, &app, &QCoreApplication::quit);
    QCoreApplication::exec();
    const Holdings start = Holdings::now();
    print(QStringLiteral("start"), start);
    Holdings afterFirstHour;
    int progressed = 0;
    int successes = 0;
    {
        CommandFileWriter::create(folder.path());
        StatusFileParser* reader = StatusFileParser::create(folder.path());
        QObject receiver;
        QObject::connect(
            reader, &StatusFileParser::progress, reader, [&drive] { drive.ticked(); }, Qt::DirectConnection);
        QObject::connect(reader, &StatusFileParser::progress, &receiver, [&] {
            ++progressed;
            if (progressed == TicksPerHour - 1)
                afterFirstHour = Holdings::now();
            if (progressed == TicksPerHour - 1 || (progressed + 1) % (ticks / 8) == 0)
                print(QString::number(progressed + 1), Holdings::now());
        });
        QObject::connect(reader, &StatusFileParser::finished, &receiver, [&successes](bool success) {
            successes += success ? 1 : 0;
            QCoreApplication::quit();
        });
        QObject::connect(reader, &StatusFileParser::timeout, &receiver, &QCoreApplication::quit);
        CommandFileWriter::instance()->read(QStringLiteral("1234567"));
        reader->start(hours * 3600 * 2, 0, 0);
        s_drive =
            &drive; // behind the read of the snapshot, and ahead of the first tick, for which the clock has to move
        drive.begin();
        QCoreApplication::exec();
        s_drive = nullptr;
        delete reader;
        delete CommandFileWriter::instance();
    }
    const Holdings end = Holdings::settled(start);
    print(QStringLiteral("end"), end);
    return tell(drive, ticks, progressed, successes, start, afterFirstHour, end) ? 0 : 1;
}

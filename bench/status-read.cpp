// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// One forced read of the status file against the same two file operations by bare system calls.

#include "bench/Machine.h"
#include "bench/Report.h"
#include "plugin/session/Logger.h"
#include "reader/StatusFileParser.h"
#include "support/ReaderFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <memory>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

#ifdef Q_OS_UNIX

constexpr bool HasBareCalls = true;

/// What no forced read can do without: make or empty the trigger file, then read the status file.
bool bareRead(const char* trigger, const char* status)
{
    const int written = ::open(trigger, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (written < 0)
        return false;
    ::close(written);

    const int read = ::open(status, O_RDONLY | O_CLOEXEC);
    if (read < 0)
        return false;
    char bytes[4096];
    const ssize_t size = ::read(read, bytes, sizeof bytes);
    ::close(read);
    return size > 0;
}

#else

constexpr bool HasBareCalls = false;

bool bareRead(const char*, const char*)
{
    return false;
}

#endif

constexpr int CallsPerRound = 20;

/// Microseconds for one of @p calls calls of @p operation; below 0 if one of them failed.
template <typename Operation>
double microsecondsOf(const Operation& operation)
{
    const BenchClock::time_point start = BenchClock::now();
    bool good = true;
    for (int i = 0; i < CallsPerRound; ++i)
        good &= operation();
    const double each = 1000.0 * millisecondsSince(start) / CallsPerRound;
    return good ? each : -1;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    Report report(QStringLiteral("Forced read of the status file, against bare system calls"));
    const QString folderOption = QStringLiteral("folder");
    report.addNumber(QStringLiteral("rounds"), QStringLiteral("Rounds of 20 reads each way."), 2000);
    report.parser.addOption({folderOption, QStringLiteral("Where to put the drive; it should lie in memory."),
                             QStringLiteral("FOLDER"), memoryFolder()});
    report.parse();
    const int rounds = report.number(QStringLiteral("rounds"));

    const QString what = QStringLiteral("readStatus() / bare system calls, median");
    if (!HasBareCalls) {
        report.lack(what, QStringLiteral("no POSIX calls here"));
        return report.print();
    }

    const QString folder = report.parser.value(folderOption);
    const QTemporaryDir drive(folder + QStringLiteral("/merivo-bench-XXXXXX"));
    const QString status = drive.filePath(QStringLiteral("MISC/STATUS.TXT"));
    QFile file(status);
    if (!drive.isValid() || !QDir(drive.path()).mkdir(QStringLiteral("MISC")) || !file.open(QIODevice::WriteOnly))
        return benchmarkFailed(QStringLiteral("can't write to %1").arg(folder));
    file.write(ReaderFolder::statusText(QStringLiteral("Reader status 1"), QStringLiteral("BTREAD"),
                                        QStringLiteral("running"), QStringLiteral("1234567")));
    file.close();

    quietLog();
    Logger::instance(nullptr, nullptr);
    const std::unique_ptr<StatusFileParser> parser(StatusFileParser::create(drive.path()));

    const QByteArray triggerPath = QFile::encodeName(drive.filePath(QStringLiteral("MISCNoCommand.txt")));
    const QByteArray statusPath = QFile::encodeName(status);
    const auto forcedRead = [&parser] {
        return !parser->readStatus().header.isEmpty();
    };
    const auto bareCalls = [&triggerPath, &statusPath] {
        return bareRead(triggerPath.constData(), statusPath.constData());
    };
    std::vector<double> ours;
    std::vector<double> bare;
    std::vector<double> ratios;
    for (int i = -rounds / 20; i < rounds; ++i) {
        // Who goes first changes, so that neither always finds what the other left in the caches.
        double first = i % 2 ? microsecondsOf(forcedRead) : microsecondsOf(bareCalls);
        double second = i % 2 ? microsecondsOf(bareCalls) : microsecondsOf(forcedRead);
        if (first < 0 || second < 0)
            return benchmarkFailed(QStringLiteral("a read failed in %1").arg(drive.path()));
        if (i < 0)
            continue; // warming up
        ours.push_back(i % 2 ? first : second);
        bare.push_back(i % 2 ? second : first);
        ratios.push_back(ours.back() / bare.back());
    }

    report.add(what, percentile(ratios, 0.5), QStringLiteral("times"), 2.5);
    report.tell(QStringLiteral("one readStatus(), median"), percentile(ours, 0.5), QStringLiteral("us"));
    report.tell(QStringLiteral("the same by bare system calls, median"), percentile(bare, 0.5), QStringLiteral("us"));
    return report.print();
}

// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The MAC of an exchange file against a bare loop over the same bytes, and the memory that it takes.

#include "bench/Machine.h"
#include "bench/Report.h"
#include "commands/ImportDataCommand.h"
#include "host/SharedKey.h"
#include "plugin/session/PatientSession.h"

#include <QCoreApplication>
#include <QFile>
#include <QMessageAuthenticationCode>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

namespace {

struct Size
{
    int mebibytes;
    int roundsFactor; ///< a small file is quickly done, and needs more rounds to have an undisturbed one
};

constexpr std::array<Size, 3> Sizes{{{1, 10}, {8, 4}, {64, 1}}};
const QString DatabaseGuid = QStringLiteral("{d2f7a4a0-0001-4c1e-9a55-000000000001}");

/// Qt's code over the file by hand: the least that a file MAC can be.
QString bareMac(const QString& path)
{
    const QByteArray shared(reinterpret_cast<const char*>(SharedKey.data()), static_cast<int>(SharedKey.size()));
    QMessageAuthenticationCode mac(QCryptographicHash::Sha256, shared.toHex() + DatabaseGuid.toUtf8());
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    static std::array<char, 65536> buffer;
    for (qint64 size = 1; size > 0;) {
        size = file.read(buffer.data(), static_cast<qint64>(buffer.size()));
        if (size > 0)
            mac.addData(buffer.data(), static_cast<int>(size));
    }
    return QString::fromLatin1(mac.result().toHex());
}

QString commandMac(const QString& path)
{
    PatientSession::instance()->setExchangeFilePath(path);
    ImportDataCommand command(nullptr);
    command.m_databaseGuid = DatabaseGuid;
    return command.fileMac();
}

/// Runs this program once more, as a process whose only work is one MAC, and returns by how many KiB that raised its
/// peak; below 0 where it can't be told.
long memoryForMac(const QString& path)
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--child"), path});
    if (!child.waitForFinished(-1) || child.exitStatus() != QProcess::NormalExit || child.exitCode() != 0)
        return -1;
    return child.readAllStandardOutput().trimmed().toLong();
}

int runAsChild(const QString& path)
{
    const long before = peakMemory();
    const QString mac = commandMac(path);
    const long after = peakMemory();
    if (before == 0 || mac.isEmpty())
        return 1;
    std::printf("%ld\n", after - before);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    Report report(QStringLiteral("MAC of an exchange file, against a bare loop over its bytes"));
    const QString childOption = QStringLiteral("child");
    QCommandLineOption child(childOption, {}, QStringLiteral("FILE"));
    child.setFlags(QCommandLineOption::HiddenFromHelp);
    report.parser.addOption(child);
    report.addNumber(QStringLiteral("rounds"), QStringLiteral("Rounds with the largest file."), 20);
    report.parse();
    if (report.parser.isSet(childOption))
        return runAsChild(report.parser.value(childOption));

    const QTemporaryDir folder;
    std::vector<double> memory;
    for (const auto [mebibytes, roundsFactor] : Sizes) {
        const int rounds = roundsFactor * report.number(QStringLiteral("rounds"));
        const QString path = folder.filePath(QStringLiteral("I%1.xml").arg(mebibytes));
        if (!writeRandomFile(path, mebibytes))
            return benchmarkFailed(QStringLiteral("can't write %1").arg(path));
        if (commandMac(path) != bareMac(path))
            return benchmarkFailed(QStringLiteral("the two MACs of %1 differ").arg(path));

        // Processor time, as nothing here waits for a disk, and the fastest call of each, as whatever disturbs the
        // machine only ever adds to it.
        std::array<double, 2> fastest{1e9, 1e9};
        for (int i = 0; i < rounds; ++i) {
            for (const int turn : {i % 2, 1 - i % 2}) {
                const std::clock_t start = std::clock();
                turn == 0 ? commandMac(path) : bareMac(path);
                const double time = 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
                double& best = fastest.at(static_cast<std::size_t>(turn));
                best = std::min(best, time);
            }
        }
        report.add(QStringLiteral("fileMac() / bare loop, %1 MiB, fastest of each").arg(mebibytes),
                   fastest[0] / fastest[1], QStringLiteral("times"), 1.05);
        report.tell(QStringLiteral("fileMac() of %1 MiB, fastest").arg(mebibytes), fastest[0], QStringLiteral("ms"));
        memory.push_back(static_cast<double>(memoryForMac(path)));
    }

    const QString growth = QStringLiteral("peak memory, 64 MiB file above 1 MiB file");
    const QString unit = QStringLiteral("KiB");
    if (percentile(memory, 0) < 0) {
        report.lack(growth, QStringLiteral("the system doesn't tell"));
        return report.print();
    }
    // A few pages more or less come and go by themselves.
    report.add(growth, memory.back() - memory.front(), unit, 128);
    for (std::size_t i = 0; i < Sizes.size(); ++i)
        report.tell(QStringLiteral("memory for the MAC of %1 MiB").arg(Sizes.at(i).mebibytes), memory.at(i), unit);
    return report.print();
}

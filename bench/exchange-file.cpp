// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// The MAC of an exchange file, compared with a bare loop over its bytes, and how the cost of MAC and import grows with
// the file. The import of merivo-host requests that MAC, computes one of its own and stores the bytes.

#include "base/PatientSession.h"
#include "bench/Machine.h"
#include "bench/Report.h"
#include "hostapi/SharedKey.h"
#include "hostcommands/ImportDataCommand.h"
#include "tools/host/HostDatabase.h"
#include "tools/host/HostDeviceAdmin.h"
#include "tools/host/HostLog.h"
#include "tools/host/ImportHandler.h"
#include "tools/host/PatientEvents.h"

#include <QApplication>
#include <QFile>
#include <QMessageAuthenticationCode>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

constexpr std::array<int, 3> Sizes{1, 8, 64}; // MiB
const QString DatabaseGuid = "{d2f7a4a0-0001-4c1e-9a55-000000000001}";
const QString Puid = "p-0001";

/// The results of a child process, in milliseconds and KiB.
enum Cost { MacTime, MacMemory, ImportTime, ImportMemory, CostCount };

/// The minimum cost of a MAC: Qt's code applied to the bytes of the file.
QString bareMac(const QString& path)
{
    const QByteArray shared(reinterpret_cast<const char*>(SharedMacKey.data()), static_cast<int>(SharedMacKey.size()));
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

template <typename Work>
double workTime(const Work& work)
{
    const double start = workMilliseconds();
    work();
    return workMilliseconds() - start;
}

/// Computes one MAC and imports into a new database, in a separate process, to measure each peak of memory.
int runAsChild(const QString& path)
{
    std::array<double, CostCount> costs{};
    const auto measure = [&costs](Cost time, Cost memory, const auto& work) {
        const long before = peakMemory();
        costs.at(time) = workTime(work);
        costs.at(memory) = before > 0 ? static_cast<double>(peakMemory() - before) : -1;
    };
    measure(MacTime, MacMemory, [&path] { commandMac(path); });

    const QTemporaryDir folder(path + "-XXXXXX");
    HostLog log;
    HostDatabase database;
    if (!database.open(folder.filePath("patients.sqlite")) || !database.addPatient({Puid, {"Doe", {}, {}, {}}}))
        return benchmarkFailed(database.errorText());
    PatientEvents events;
    const HostDeviceAdmin deviceAdmin;
    ImportHandler handler(database, events, log, deviceAdmin);
    auto* command = new ImportDataCommand(nullptr); // the host takes ownership
    command->m_databaseGuid = database.guid();
    command->m_puid = Puid;
    bool isImported = false;
    measure(ImportTime, ImportMemory, [&] { isImported = handler.execute(command); });
    if (!isImported)
        return benchmarkFailed("the import of " + path + " was refused");
    for (const double cost : costs)
        std::printf("%f ", cost);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    if (const auto path = childArgument(argc, argv))
        return runAsChild(*path);
    Report report("MAC and import of an exchange file",
                  {{"rounds", 20, "MACs of the largest file."}, {"imports", 5, "Imports of each file."}});
    keepFreedMemory();

    const QTemporaryDir folder(memoryFolder() + "/exchange-XXXXXX");
    std::array<Growth, CostCount> growths{
        Growth("plug-in's MAC", "MiB", "ms"), Growth("plug-in's MAC, peak memory", "MiB", "KiB"),
        Growth("host's import", "MiB", "ms"), Growth("host's import, peak memory", "MiB", "KiB")};
    std::vector<double> macMemory;
    for (const int mebibytes : Sizes) {
        const QString path = folder.filePath(QString("I%1.xml").arg(mebibytes));
        if (!writeRandomFile(path, mebibytes) || commandMac(path) != bareMac(path))
            return benchmarkFailed("can't write " + path + ", or the two MACs differ");
        // A small file needs more rounds to get an undisturbed one.
        const int rounds = report.number("rounds") * std::min(10, Sizes.back() / mebibytes);
        const auto macs = compare(
            rounds, [&] { return workTime([&] { commandMac(path); }); },
            [&] { return workTime([&] { bareMac(path); }); });
        report.add(QString("fileMac() / bare loop, %1 MiB, fastest of each").arg(mebibytes),
                   percentile(macs->ours, 0) / percentile(macs->bare, 0), "times", 1.05);

        std::array<std::vector<double>, CostCount> costs;
        for (int i = 0; i < report.number("imports"); ++i) {
            const auto numbers = runChild(path);
            if (!numbers || numbers->size() != CostCount)
                return benchmarkFailed(QString("the import of %1 MiB failed").arg(mebibytes));
            for (std::size_t cost = 0; cost < CostCount; ++cost)
                costs.at(cost).push_back(numbers->at(cost));
        }
        for (std::size_t cost = 0; cost < CostCount; ++cost)
            growths.at(cost).add(mebibytes, percentile(costs.at(cost), 0));
        macMemory.push_back(percentile(costs.at(MacMemory), 0));
        QFile::remove(path);
    }
    for (const Cost cost : {MacTime, ImportTime, ImportMemory})
        growths.at(cost).addTo(report, 1.3); // the MAC's memory doesn't grow at all, see below
    const QString what = "peak memory of the MAC, 64 MiB above 1 MiB";
    if (macMemory.front() < 0)
        report.addMissing(what, "not reported by the system");
    else
        report.add(what, macMemory.back() - macMemory.front(), "KiB", 128); // some pages vary by themselves
    return report.print();
}

// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT

// How the hand-over of an exchange file grows with its size: the plug-in's MAC, and merivo-host's whole import, which
// asks for that MAC once more, computes one of its own and stores the bytes.

#include "bench/Growth.h"
#include "bench/Machine.h"
#include "commands/ImportDataCommand.h"
#include "plugin/session/PatientSession.h"
#include "workbench/host/HostDatabase.h"
#include "workbench/host/HostDeviceAdmin.h"
#include "workbench/host/HostLog.h"
#include "workbench/host/ImportHandler.h"
#include "workbench/host/PatientEvents.h"

#include <QApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>

namespace {

const QString Puid = QStringLiteral("p-0001");

struct Cost
{
    double macMs = -1;
    double importMs = -1;
    double importKib = -1; ///< what the import adds to the peak of the process
};

/// One import into a new database, in a process of its own, so that its peak of memory is seen.
Cost costOf(const QString& path)
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--child"), path});
    if (!child.waitForFinished(-1) || child.exitStatus() != QProcess::NormalExit || child.exitCode() != 0)
        return {};
    const QList<QByteArray> fields = child.readAllStandardOutput().trimmed().split(' ');
    return {fields.value(0).toDouble(), fields.value(1).toDouble(), fields.value(2).toDouble()};
}

int runAsChild(const QString& path)
{
    const QTemporaryDir folder(path + QStringLiteral("-XXXXXX"));
    HostLog log;
    HostDatabase database;
    if (!database.open(folder.filePath(QStringLiteral("patients.sqlite"))) ||
        !database.addPatient({Puid, {QStringLiteral("Doe"), {}, {}, {}}}))
        return benchmarkFailed(database.errorText());
    PatientEvents events;
    const HostDeviceAdmin deviceAdmin;
    ImportHandler handler(database, events, log, deviceAdmin);

    PatientSession::instance()->setExchangeFilePath(path);
    auto* command = new ImportDataCommand(nullptr); // the host takes it over
    command->m_databaseGuid = database.guid();
    command->m_puid = Puid;

    double start = workMilliseconds();
    command->fileMac();
    const double mac = workMilliseconds() - start;
    const long before = peakMemory();
    start = workMilliseconds();
    if (!handler.execute(command))
        return benchmarkFailed(QStringLiteral("the import of %1 was refused").arg(path));
    const double import = workMilliseconds() - start;
    std::printf("%f %f %ld\n", mac, import, peakMemory() - before);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Report report(QStringLiteral("How the hand-over of an exchange file grows with its size"));
    const QString childOption = QStringLiteral("child");
    QCommandLineOption child(childOption, {}, QStringLiteral("FILE"));
    child.setFlags(QCommandLineOption::HiddenFromHelp);
    report.parser.addOption(child);
    report.addNumber(QStringLiteral("most"), QStringLiteral("The largest size, in MiB."), 64);
    report.addNumber(QStringLiteral("rounds"), QStringLiteral("Imports of each size."), 5);
    report.parse();
    quietLog();
    if (report.parser.isSet(childOption))
        return runAsChild(report.parser.value(childOption));

    const QTemporaryDir folder(memoryFolder() + QStringLiteral("/growth-XXXXXX"));
    const QString things = QStringLiteral("MiB");
    Growth macs(QStringLiteral("plug-in's MAC"), things, QStringLiteral("ms"));
    Growth imports(QStringLiteral("host's import"), things, QStringLiteral("ms"));
    Growth memory(QStringLiteral("host's import, peak memory added"), things, QStringLiteral("KiB"));
    for (int mebibytes = 1; mebibytes <= report.number(QStringLiteral("most")); mebibytes *= 4) {
        const QString path = folder.filePath(QStringLiteral("I%1.xml").arg(mebibytes));
        if (!writeRandomFile(path, mebibytes))
            return benchmarkFailed(QStringLiteral("can't write %1").arg(path));
        Cost least = costOf(path);
        for (int i = 1; i < report.number(QStringLiteral("rounds")) && least.macMs >= 0; ++i) {
            const Cost cost = costOf(path);
            least = {std::min(least.macMs, cost.macMs), std::min(least.importMs, cost.importMs),
                     std::min(least.importKib, cost.importKib)};
        }
        if (least.macMs < 0)
            return benchmarkFailed(QStringLiteral("the import of %1 MiB failed").arg(mebibytes));
        macs.add(mebibytes, least.macMs);
        imports.add(mebibytes, least.importMs);
        memory.add(mebibytes, least.importKib);
        QFile::remove(path);
    }
    for (const Growth* growth : {&macs, &imports, &memory})
        growth->tell(report, 1.3);
    return report.print();
}

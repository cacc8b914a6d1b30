// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/Programs.h"
#include "workbench/host/HostDatabase.h"
#include "workbench/host/HostLog.h"
#include "workbench/host/TrafficKeeper.h"
#include "workbench/traffic/Traffic.h"

#include <KZip>

#include <QDir>
#include <QDirIterator>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

/// The first planted value that the bytes hold as text of either width, in hexadecimal digits or in base 64.
QString leakIn(const QByteArray& bytes, QStringList planted = {})
{
    planted << "Zackerly"
            << "Quentina"
            << "987654"
            << "42:7A:03"
            << "427A03"
            << "Q-7"
            << "1961-03-09"
            << "09.03.1961"
            << "47110815"
            << "merivo-jane" << QChar(0xeb) << QChar(0xab);
    for (const QString& value : qAsConst(planted)) {
        const QByteArray wide(reinterpret_cast<const char*>(value.utf16()), value.size() * 2);
        for (const QByteArray& form : {value.toUtf8(), value.toLatin1(), value.toUtf8().toHex(), wide})
            if (bytes.toLower().contains(form.toLower()))
                return value;
        for (int skipped = 0; skipped < 3 && value.size() >= skipped + 3; ++skipped)
            if (bytes.contains(value.toUtf8().mid(skipped, (value.size() - skipped) / 3 * 3).toBase64()))
                return value;
    }
    return {};
}

/// The files of an archive, the contents of all folders.
QByteArrayList filesOf(const QString& archivePath)
{
    QByteArrayList files;
    KZip archive(archivePath);
    if (archive.open(QIODevice::ReadOnly) && archive.directory()->copyTo(archivePath + ".unpacked"))
        for (QDirIterator it(archivePath + ".unpacked", QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
            files << bytesOf(it.next());
    return files;
}

} // namespace

class TestDiagnostics final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordingHoldsNothingPersonal()
    {
        const QTemporaryDir folder;
        QStringList seen, errors;
        const QStringList call{"--anonymise", DATA "/personal.jsonl", folder.filePath("r")};
        QCOMPARE(Program(MERIVO_READER_PROGRAM, call).end(), QString("0 "));
        QVERIFY(Program(MERIVO_READER_PROGRAM, call).end().startsWith("1 merivo-reader: " + folder.filePath("r: ")));
        const auto entries = loadTraffic(folder.filePath("r"), &errors);
        for (const TrafficEntry& entry : *entries) {
            seen << entry.name() + '\n' + QString::fromUtf8(*entry.content());
            QVERIFY2(leakIn(entry.file.toUtf8() + *entry.content()).isEmpty(), qPrintable(seen.last()));
        }
        const QString serial = seen[0].section('"', 1, 1), file = seen[2].section('\n', 0, 0);
        QVERIFY(file.startsWith('I' + serial + '_') && seen[4].contains('>' + serial + "</SERIALNR>"));
        // The address is the same without its marks, and a list breaks off where it did.
        QVERIFY(seen[4].endsWith(seen[0].section(' ', 3, 3).remove(':') + "</BTADR><PATIENT_ID>0</PATIENT_ID>"));
        QVERIFY(seen[1].contains("done\r\nResult  = " + serial + "\r\nError code -31.\r\n"));
        QVERIFY(seen[3].endsWith("Status  = done\nResult  = " + file + "\nError code -0.\n"));
        QVERIFY(!seen.last().contains("Lost") && !seen.last().contains('7') && !seen[10].contains("-7."));
        QVERIFY(seen[14].endsWith("\nError-0.") && seen[5].endsWith("\nFirmware version 3.2.23"));
    }

    void logAndTrafficKeepTheirLimits()
    {
        const QTemporaryDir folder;
        for (const int most : {3, 99}) {
            HostLog log;
            QString all;
            QVERIFY(log.openFile(folder.filePath("log%1").arg(most), &all, {400, most}));
            for (int i = 100; i < 200; ++i)
                log.write("host", "Info", QString::number(i));
            for (const QString& path : log.files()) {
                QVERIFY(QFileInfo(path).size() <= 400);
                all += bytesOf(path);
            }
            const QStringList lines = all.split('\n'); // the last is empty
            for (int i = 0; i < lines.size() - 1; ++i)
                QVERIFY(lines[i].contains("\thost\t" + QString::number(i + 201 - lines.size())));
            QVERIFY(most == 99 ? lines.size() == 101 : log.files().size() == 3);
        }
        const QString misc = folder.filePath("drive/MISC");
        QVERIFY(QDir().mkpath(misc) && write(misc + "/V1.log", QByteArray(1000, 'v')));
        TrafficKeeper keeper(folder.path(), {4000, 12000, 500, 1});
        const QSignalSpy full(&keeper, &TrafficKeeper::failed);
        QStringList errors;
        for (int run = 1, status = 0; run <= 5; ++run) {
            keeper.begin(folder.filePath("drive"));
            QTRY_VERIFY(write(misc + "/STATUS.TXT", QByteArray(300, 'a') + QByteArray::number(++status)) &&
                        full.size() == run);
        }
        const QStringList names = TrafficKeeper::recordingsIn(folder.path());
        QCOMPARE(names.size(), 3);
        for (const QString& name : qAsConst(names)) {
            const auto entries = loadTraffic(folder.filePath(name), &errors);
            QVERIFY(entries && QFileInfo(folder.filePath(name)).size() <= 4000 && entries->at(0).filler);
        }
    }

    void logFailureIsReportedOnce()
    {
        if (!QFile::exists("/dev/full"))
            QSKIP("Needs a disk that is always full.");
        const QTemporaryDir folder;
        HostLog log;
        const QSignalSpy failures(&log, &HostLog::fileFailed);
        QString error;
        QVERIFY(log.openFile("/dev/full", &error));
        for (const char* message : {"first", "second"})
            log.write("host", "Info", message);
        QCOMPARE(failures.size(), 1);
        QVERIFY(log.contains("second") && write(folder.filePath("log"), "torn"));
        QVERIFY(HostLog().openFile(folder.filePath("log"), &error) && bytesOf(folder.filePath("log")) == "torn\n");
    }

    void reportRepeatsTheFailureWithoutThePerson()
    {
        const QTemporaryDir temporary;
        QDir folder(temporary.path());
        const auto host = [&](const QString& arguments, const QString& before = {}) {
            return Program("sh", {"-c", before + "exec " MERIVO_HOST_PROGRAM " " + arguments}, folder.path()).end();
        };
        const auto failureOf = [&](const QString& user, const QStringList& readerArguments) {
            Program reader(MERIVO_READER_PROGRAM, readerArguments + QStringList(user), folder.path());
            reader.waitForReadyRead();
            const QString options(" --robot=%1.steps --database=%1.db --drive=%1 --diagnostics=%1/kept");
            const QString end = host("--plugin=" MERIVO_PLUGIN_LIBRARY + options.arg(user));
            reader.terminate();
            reader.waitForFinished();
            const QStringList log = QString(bytesOf(folder.filePath(user + "/kept/host.log"))).split('\n');
            return end + log.filter("\terr\t").replaceInStrings(QRegularExpression("^\\S+"), "").join('\n');
        };
        QByteArray steps = bytesOf(DATA "/report.steps");
        steps.replace("fileNameEdit ", "fileNameEdit " + folder.path().toUtf8() + '/');
        QVERIFY(folder.mkdir("merivo-jane") && folder.mkdir("b") && write(folder.filePath("merivo-jane.steps"), steps));
        const QString failure = failureOf("merivo-jane", {"--scenario", DATA "/report.json"});
        QVERIFY2(failure.startsWith("0 \terr\t") && failure.contains("error='32'"), qPrintable(failure));
        const QString report = "--database=merivo-jane.db --diagnostics=merivo-jane/kept --drive=47110815 --report=";
        QCOMPARE(host(report + "a.zip") + host(report + "p.zip --with-personal-data"), QString("0 0 "));
        QVERIFY(!leakIn(filesOf(folder.filePath("p.zip")).join()).isEmpty()); // it finds what there is

        HostDatabase database;
        QVERIFY(database.open(folder.filePath("merivo-jane.db")));
        const QByteArrayList files = filesOf(folder.filePath("a.zip"));
        const QString key = QString(database.guid()).remove('-');
        QByteArray traffic;
        for (const QByteArray& bytes : files) {
            QVERIFY2(leakIn(bytes, {database.guid(), key}).isEmpty(), bytes);
            traffic = bytes.startsWith('{') ? bytes : traffic;
        }
        const QByteArray patient = traffic.mid(traffic.indexOf("BTISPAIRED ") + 11).split('"').first();
        QVERIFY(files.size() == 5 && folder.remove("saved.zip") && write(folder.filePath("r"), traffic));
        QVERIFY(write(folder.filePath("b.steps"), QByteArray(steps).replace("Q-7", patient)));
        QCOMPARE(failureOf("b", {"--replay", "r"}), failure);

        QVERIFY(host(report + "a.zip").startsWith("1 merivo-host: The report 'a.zip' wasn't written: there is a file"));
        const QString full = host(report + "f.zip", "trap '' XFSZ; ulimit -f 1; ");
        QVERIFY2(full.startsWith("1 ") && folder.entryList({"f.zip*"}).isEmpty(), qPrintable(full));
    }
};

QTEST_GUILESS_MAIN(TestDiagnostics)

#include "test_diagnostics.moc"

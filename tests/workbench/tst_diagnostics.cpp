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

/// Returns the first personal value that the bytes contain as text of either width, hexadecimal digits or base 64.
QString leakIn(const QByteArray& bytes, QStringList personal = {})
{
    personal += {"Zackerly", "Quentina", "987654",     "219034",     "42:7A:0",  "427A0",
                 "P-1001",   "Q-7",      "1961-03-09", "09.03.1961", "47110815", "merivo-jane"};
    for (const QString& value : qAsConst(personal)) {
        const QByteArray wide(reinterpret_cast<const char*>(value.utf16()), value.size() * 2);
        for (const QByteArray& form : {value.toUtf8(), value.toUtf8().toHex(), wide})
            if (bytes.toLower().contains(form.toLower()))
                return value;
        for (int skipped = 0; skipped < 3 && value.size() >= skipped + 3; ++skipped)
            if (bytes.contains(value.toUtf8().mid(skipped, (value.size() - skipped) / 3 * 3).toBase64()))
                return value;
    }
    return {};
}

/// Returns the contents of all files of an archive.
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
    void anonymisedRecordingHasNothingPersonal()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("r");
        QStringList seen, errors;
        QCOMPARE(Program(MERIVO_READER_PROGRAM, {"--anonymise", DATA "/personal.jsonl", path}).end(), QString("0 "));
        const auto entries = loadTraffic(path, &errors);
        for (const TrafficEntry& entry : *entries) {
            seen << entry.name() + '\n' + QString::fromUtf8(*entry.content());
            QVERIFY2(leakIn(entry.file.toUtf8() + *entry.content()).isEmpty(), qPrintable(seen.last()));
        }
        // A word has one replacement everywhere, an address also without its colons, and the numbers are kept.
        const QString serial = seen[0].section('"', 1, 1), file = seen[2].section('\n', 0, 0);
        QVERIFY(file.startsWith('I' + serial + '_') && seen[4].contains('>' + serial + "</SERIALNR>"));
        QVERIFY(seen[4].contains(seen[0].section(' ', 3, 3).remove(':') + "</BTADR><PATIENT_ID>0</PATIENT_ID>"));
        QVERIFY(seen[1].contains("done\r\nResult  = " + serial + "\r\nError code -31.\r\n"));
        QVERIFY(seen[3].endsWith("Status  = done\nResult  = " + file + "\nError code -0.\n"));
        QVERIFY(seen[5].endsWith("\nFirmware version 3.2.23"));
    }

    void rotatingLogKeepsTheLatestLines()
    {
        const QTemporaryDir folder;
        HostLog log;
        QString all;
        QVERIFY(log.openFile(folder.filePath("log"), &all, {400, 3}));
        for (int i = 100; i < 200; ++i)
            log.write("host", "Info", QString("a\tb\n%1").arg(i));
        QCOMPARE(log.files().size(), 3);
        for (const QString& path : log.files()) {
            QVERIFY(QFileInfo(path).size() <= 400);
            all += bytesOf(path);
        }
        const QStringList lines = all.split('\n'); // the last is empty
        for (int i = 0; i < lines.size() - 1; ++i)
            QVERIFY(lines[i].contains("\tInfo\thost\ta\\tb\\n" + QString::number(i + 201 - lines.size())));
    }

    void logTableKeepsTheLatestRecords()
    {
        HostLog log;
        for (int i = 0; i < 20500; ++i)
            log.write("host", "mcp", QString::number(i));
        QVERIFY(log.rowCount() == 20000 && log.contains("20499"));
        QTRY_COMPARE(log.rowCount(), 18500);
        QCOMPARE(log.index(0, HostLog::MessageColumn).data().toString(), QString("2000"));
        QCOMPARE(log.index(18499, HostLog::MessageColumn).data().toString(), QString("20499"));
    }

    void logFailureIsReportedOnce()
    {
        if (!QFile::exists("/dev/full"))
            QSKIP("Needs a disk that is always full.");
        HostLog log;
        const QSignalSpy failures(&log, &HostLog::fileFailed);
        QString error;
        QVERIFY(log.openFile("/dev/full", &error));
        for (const char* message : {"first", "second"})
            log.write("host", "Info", message);
        QCOMPARE(failures.size(), 1);
        QVERIFY(log.contains("second"));
    }

    void trafficKeepsItsLimits()
    {
        const QTemporaryDir folder;
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

    void anonymisedReportRepeatsTheFailure()
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
        const QStringList reader{"--scenario", MERIVO_READER_SCENARIOS "/clinic.json", "--fault", "fail=32@BTREAD"};
        const QString failure = failureOf("merivo-jane", reader);
        QVERIFY2(failure.startsWith("0 \terr\t") && failure.contains("error='32'"), qPrintable(failure));
        const QString report = "--database=merivo-jane.db --diagnostics=merivo-jane/kept --drive=47110815 --report=";
        QCOMPARE(host(report + "a.zip") + host(report + "p.zip --with-personal-data"), QString("0 0 "));
        QVERIFY(!leakIn(filesOf(folder.filePath("p.zip")).join()).isEmpty());

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
        QVERIFY(write(folder.filePath("b.steps"), QByteArray(steps).replace("P-1001", patient)));
        QCOMPARE(failureOf("b", {"--replay", "r"}), failure);

        QVERIFY(host(report + "a.zip").startsWith("1 merivo-host: The report 'a.zip' wasn't written: there is a file"));
        const QString full = host(report + "f.zip", "trap '' XFSZ; ulimit -f 1; ");
        QVERIFY2(full.startsWith("1 ") && folder.entryList({"f.zip*"}).isEmpty(), qPrintable(full));
    }
};

QTEST_GUILESS_MAIN(TestDiagnostics)

#include "tst_diagnostics.moc"

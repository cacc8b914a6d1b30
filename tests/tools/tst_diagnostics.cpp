// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/Programs.h"
#include "tools/host/HostDatabase.h"
#include "tools/traffic/Traffic.h"

#include <KZip>

#include <QDir>
#include <QDirIterator>
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
    const QTemporaryDir folder;
    if (archive.open(QIODevice::ReadOnly) && archive.directory()->copyTo(folder.path()))
        for (QDirIterator it(folder.path(), QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
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

    void anonymisedReportRepeatsTheFailure()
    {
        const QTemporaryDir temporary;
        QDir folder(temporary.path());
        const auto host = [&folder](const QString& arguments) {
            return Program(MERIVO_HOST_PROGRAM, arguments.split(' '), folder.path()).end();
        };
        const auto failureOf = [&](const QString& user, const QStringList& readerArguments) {
            Program reader(MERIVO_READER_PROGRAM, readerArguments + QStringList(user), folder.path());
            reader.waitForReadyRead();
            const QString options(" --robot=%1.steps --database=%1.db --drive=%1 --diagnostics=%1/kept");
            const QString end = host("--plugin=" MERIVO_PLUGIN_LIBRARY + options.arg(user));
            reader.terminate();
            const QString readersStatus = reader.end().section(' ', 0, 0);
            const QStringList log = QString(bytesOf(folder.filePath(user + "/kept/host.log"))).split('\n');
            return readersStatus + ' ' + end +
                   log.filter("\terr\t").replaceInStrings(QRegularExpression("^\\S+"), "").join('\n');
        };
        QByteArray steps = bytesOf(DATA "/report.steps");
        steps.replace("fileNameEdit ", "fileNameEdit " + folder.path().toUtf8() + '/');
        QVERIFY(folder.mkdir("merivo-jane") && folder.mkdir("b") && write(folder.filePath("merivo-jane.steps"), steps));
        const QString scenario(MERIVO_READER_SCENARIOS "/clinic.json");
        const QStringList reader{"--scenario", scenario, "--fault", "fail=32@BTREAD", "--record", "recording"};
        const QString failure = failureOf("merivo-jane", reader);
        QVERIFY2(failure.startsWith("0 0 \terr\t") && failure.contains("error='32'"), qPrintable(failure));
        QVERIFY(bytesOf(folder.filePath("recording")).contains("Command=BTREAD"));
        const QString report = "--database=merivo-jane.db --diagnostics=merivo-jane/kept --report=";
        QCOMPARE(host(report + "p.zip --with-personal-data"), QString("0 "));
        QVERIFY(!leakIn(filesOf(folder.filePath("p.zip")).join()).isEmpty());

        HostDatabase database;
        QVERIFY(database.open(folder.filePath("merivo-jane.db")));
        const QByteArrayList files = filesOf(folder.filePath("saved.zip"));
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

        QVERIFY(host(report + "p.zip").startsWith("1 merivo-host: The report 'p.zip' wasn't written: there is a file"));
    }
};

QTEST_GUILESS_MAIN(TestDiagnostics)

#include "tst_diagnostics.moc"

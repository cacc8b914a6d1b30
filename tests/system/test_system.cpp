// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QVariant>

namespace {

const QString Serial = QStringLiteral("MV-204817");

/// The steps up to the main dialog with Jane's pump in it.
const QString ToMainDialog = QStringLiteral("patient P-1 Doe Jane 1970-02-03\n"
                                            "patient P-2 Roe Richard\n"
                                            "open P-1\n"
                                            "trigger\n");
const QString ToReadDialog = ToMainDialog + QStringLiteral("wait m_readPumpButton enabled within 40\n"
                                                           "click m_readPumpButton\n"
                                                           "wait dialog PumpReadDialog open\n");
const QString RunEnded = QStringLiteral("wait dialog MainDialog closed within 20\n"
                                        "wait log \"<-- Plugin component execution finished\" within 20\n"
                                        "quit\n");
const QString GiveUpReading = QStringLiteral("wait m_ProgressLabel text equals \"Download failed!\" within 30\n"
                                             "wait PumpReadDialog/m_ReadButton enabled\n"
                                             "click PumpReadDialog/m_DialogButtonBox/Cancel\n"
                                             "wait dialog PumpReadDialog closed\n"
                                             "click MainDialog/m_DialogButtonBox/Close\n") +
                              RunEnded;

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A process that doesn't outlive the test.
class Program final
{
public:
    Program(const QString& path, const QStringList& arguments)
    {
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(path, arguments);
    }
    ~Program()
    {
        m_process.terminate();
        if (!m_process.waitForFinished(5000))
            m_process.kill();
        m_process.waitForFinished();
    }
    bool waitForLine(const QByteArray& text)
    {
        while (!m_output.contains(text) && m_process.waitForReadyRead(10000))
            m_output += m_process.readAll();
        return m_output.contains(text);
    }
    /// The exit status, or -1 if it crashed or took too long.
    int finish(int limitMs)
    {
        const bool isFinished = m_process.waitForFinished(limitMs);
        m_output += m_process.readAll();
        return isFinished && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }
    QByteArray output() const { return m_output; }

private:
    QProcess m_process;
    QByteArray m_output;
};

} // namespace

/// Whole runs: the built library in merivo-host, merivo-reader as its reader, a robot as its user.
class SystemTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wholeRun_data();
    void wholeRun();
};

void SystemTest::wholeRun_data()
{
    QTest::addColumn<QStringList>("reader"); // arguments; "none": no reader's drive
    QTest::addColumn<QString>("steps");
    QTest::addColumn<int>("imports");
    QTest::addColumn<QStringList>("log"); // in this order, among others

    const QString readAndEnd = QStringLiteral("wait m_ProgressLabel text equals \"Download completed!\" within 60\n");
    QTest::newRow("read") << QStringList() << ToReadDialog + readAndEnd + RunEnded << 1
                          << QStringList{"<== <BTISPAIRED P-1> submitted.",
                                         "<== <BTREAD \"MV-204817\"> submitted.",
                                         "==> [Read Controller] Readout succeeded: status='2'.",
                                         "MAC verified",
                                         "--- Plugin component execution finishing",
                                         "<-- Plugin component execution finished"};
    QTest::newRow("repeated") << QStringList()
                              << ToReadDialog + readAndEnd +
                                     "wait log \"<-- Plugin component execution finished\" within 20\n"
                                     "trigger\nwait m_readPumpButton enabled within 40\nclick m_readPumpButton\n" +
                                     readAndEnd +
                                     "wait dialog MainDialog closed within 20\nwait log \"already\"\nquit\n"
                              << 1 << QStringList{"MAC verified", "already"};
    QTest::newRow("slow") << QStringList{"--fault", "slow=1500@BTREAD"} << ToReadDialog + readAndEnd + RunEnded << 1
                          << QStringList{"Observed operation started.", "Observed operation finished.", "MAC verified"};
    QTest::newRow("left-running") << QStringList{"--fault", "left-running=BTREAD"}
                                  << ToReadDialog + readAndEnd + RunEnded << 1
                                  << QStringList{"<== <ABORT > submitted.",
                                                 "==> [Main dialog] Prepare (abort old running) succeeded.",
                                                 "<== <BTISPAIRED P-1> submitted.", "MAC verified"};
    QTest::newRow("no-pump") << QStringList{"--pair", "MV-204817=P-2"}
                             << ToMainDialog +
                                    "wait m_addPumpButton enabled within 40\n"
                                    "expect m_readPumpButton disabled\n"
                                    "expect m_pumpAssignLabel text equals \"No pump assigned\"\n"
                                    "click m_DialogButtonBox/Close\n" +
                                    RunEnded
                             << 0 << QStringList{"=== Paired pump query for patient 'P-1' finished: snr=''."};
    const QString errorBox = QStringLiteral("answer Ok title \"Sanvio Merivo Pump Plugin\" text \"%1\" within 40\n");
    QTest::newRow("fail-32") << QStringList{"--fault", "fail=32@BTREAD"}
                             << ToReadDialog + errorBox.arg("Connection lost") + GiveUpReading << 0
                             << QStringList{"Error message box: code='32'",
                                            "=!= [Read Controller] Readout failed: error='32'."};
    QTest::newRow("fail-99") << QStringList{"--fault", "fail=99@BTISPAIRED"}
                             << ToMainDialog + errorBox.arg("Error Code: 99") + RunEnded << 0
                             << QStringList{"=!= Paired pump query for patient 'P-1' failed: <99 : ",
                                            "Error message box: code='99'"};
    QTest::newRow("no-exchange-file") << QStringList{"--fault", "no-exchange-file"} << ToReadDialog + GiveUpReading << 0
                                      << QStringList{"=!= [Read Controller] Readout failed: missing exchange file."};
    QTest::newRow("two-exchange-files")
        << QStringList{"--fault", "two-exchange-files"} << ToReadDialog + GiveUpReading << 0
        << QStringList{"=!= [Read Controller] Readout failed: To many (=2) exchange files found."};
    QTest::newRow("silent-reader") << QStringList{"--fault", "no-start@BTISPAIRED"}
                                   << ToMainDialog + errorBox.arg("not responding") + RunEnded << 0
                                   << QStringList{"--- 'Unfinished command' timeout during polling"};
    QTest::newRow("old-firmware") << QStringList{"--fault", "old-firmware"}
                                  << ToMainDialog + errorBox.arg("old software version") + "quit\n"
                                  << 0
                                  << QStringList{"-!- Plugin component execution failed: unsupported firmware version"};
    QTest::newRow("no-reader") << QStringList{"none"}
                               << ToMainDialog + errorBox.arg("No Sanvio Lumo device connected.") + "quit\n"
                               << 0 << QStringList{"-!- Plugin component execution failed: missing device reader"};
}

void SystemTest::wholeRun()
{
    QFETCH(const QStringList, reader);
    QFETCH(const QString, steps);
    QFETCH(const int, imports);
    QFETCH(const QStringList, log);

    const QTemporaryDir folder;
    const QDir dir(folder.path());
    const auto path = [&dir](const char* name) {
        return dir.filePath(QLatin1String(name));
    };
    const bool hasReader = !reader.contains(QStringLiteral("none"));

    std::unique_ptr<Program> simulator;
    if (hasReader) {
        dir.mkdir(QStringLiteral("drive"));
        QStringList arguments{"--instant", "--log", path("reader.log"), path("drive")};
        if (!reader.contains(QStringLiteral("--pair")))
            arguments += {"--pair", Serial + QStringLiteral("=P-1")};
        simulator = std::make_unique<Program>(MERIVO_READER_PROGRAM, arguments + reader);
        QVERIFY2(simulator->waitForLine("merivo-reader: serving"), simulator->output().constData());
    }

    QFile script(path("steps"));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write(steps.toUtf8());
    script.close();
    Program host(MERIVO_HOST_PROGRAM,
                 {"--plugin", MERIVO_PLUGIN_LIBRARY, "--database", path("db.sqlite"), "--drive", path("drive"), "--log",
                  path("host.log"), "--robot", path("steps"), "--pictures", folder.path(), "--locale", "de_DE"});
    const int status = host.finish(110000);
    QVERIFY2(status == 0, host.output() + bytesOf(path("host.log")) + bytesOf(path("reader.log")));

    const QString records = QString::fromUtf8(bytesOf(path("host.log")));
    int at = 0;
    for (const QString& text : log) {
        at = records.indexOf(text, at);
        QVERIFY2(at >= 0, qPrintable(text + QStringLiteral(" isn't there, or not in its place, in\n") + records));
    }

    // What the database holds is what lies on the drive, for the right patient alone.
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("check"));
    database.setDatabaseName(path("db.sqlite"));
    QVERIFY(database.open());
    {
        QSqlQuery query(QStringLiteral("SELECT puid, file_name, bytes FROM imports "
                                       "JOIN import_files ON import_id = imports.id"),
                        database);
        int count = 0;
        for (; query.next(); ++count) {
            QCOMPARE(query.value(0).toString(), QStringLiteral("P-1"));
            const QStringList onDrive = QDir(path("drive/MISC")).entryList({QStringLiteral("I*.xml")});
            QCOMPARE(onDrive.size(), 1);
            const QByteArray bytes = bytesOf(path("drive/MISC/") + onDrive.first());
            QVERIFY(bytes.size() > 10000);
            QCOMPARE(query.value(2).toByteArray(), bytes);
        }
        QCOMPARE(count, imports);
    }
    database.close();
    database = {};
    QSqlDatabase::removeDatabase(QStringLiteral("check"));
}

QTEST_GUILESS_MAIN(SystemTest)

#include "test_system.moc"

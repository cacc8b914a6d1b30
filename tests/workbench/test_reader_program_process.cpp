// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString Program = QStringLiteral(MERIVO_READER_PROGRAM);
const int LimitMs = 20000;

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

/// The program, from its announcement to its end.
class Reader
{
public:
    explicit Reader(const QStringList& arguments)
    {
        m_process.start(Program, arguments);
        QByteArray announced;
        while (!announced.contains('\n') && m_process.waitForReadyRead(LimitMs))
            announced += m_process.readAllStandardOutput();
        announcement = QString::fromUtf8(announced).trimmed();
    }

    int stop()
    {
        m_process.terminate();
        return waitForEnd();
    }

    int waitForEnd()
    {
        m_process.waitForFinished(LimitMs);
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }

    QByteArray told() { return m_process.readAllStandardError(); }

    QString announcement;

private:
    QProcess m_process;
};

/// Gives a command and triggers until the status has @p word; the status file's bytes by then.
QByteArray ask(const QString& drive, const QByteArray& command, const QByteArray& word)
{
    write(drive + QStringLiteral("/MISC/CommandFile.txt"), "QD17-C RemoteControl File\nCommand=" + command);
    const QByteArray expected = "\nCmd=" + command.left(command.indexOf(' ')) + "\nStatus  = " + word + '\n';
    QByteArray status;
    [&] {
        QTRY_VERIFY2_WITH_TIMEOUT((write(drive + QStringLiteral("/MISCNoCommand.txt"), {}),
                                   status = contentOf(drive + QStringLiteral("/MISC/STATUS.TXT")),
                                   status.contains(expected)),
                                  status.constData(), LimitMs);
    }();
    return status;
}

} // namespace

class TestReaderProgramProcess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void endsWithItsStatus_data();
    void endsWithItsStatus();
    void servesUntilItIsStopped();
    void endsWhenItsDriveGoes();
    void replaysWhatItRecorded();

private:
    QString drive(const QString& name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestReaderProgramProcess::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("one")) && QDir(m_folder->path()).mkdir(QStringLiteral("two")));
}

void TestReaderProgramProcess::endsWithItsStatus_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("words");
    const auto row = [](const char* name, const QStringList& arguments, int status, const char* words) {
        QTest::newRow(name) << arguments << status << QString::fromLatin1(words);
    };
    row("help", {"--help"}, 0, "");
    row("version", {"--version"}, 0, "");
    row("faults", {"--list-faults"}, 0, "");
    const QFileInfoList scenarios = QDir(QStringLiteral(MERIVO_READER_SCENARIOS)).entryInfoList({"*.json"});
    QVERIFY(!scenarios.isEmpty());
    for (const QFileInfo& scenario : scenarios)
        row(qPrintable(scenario.fileName()), {"--check-scenario", "--scenario", scenario.filePath()}, 0, "");
    row("no drive", {}, 2, "exactly one DRIVE expected");
    row("two drives", {"%1/one", "%1/two"}, 2, "exactly one DRIVE expected");
    row("unknown option", {"--fast", "%1/one"}, 2, "Unknown option 'fast'.");
    row("unknown fault", {"--fault", "no-stop", "%1/one"}, 2, "--fault: fault \"no-stop\": unknown");
    row("seed", {"--seed", "x", "%1/one"}, 2, "--seed: \"x\" isn't a whole number");
    row("pair", {"--pair", "MV-204817", "%1/one"}, 2, "--pair: \"MV-204817\" isn't SERIAL=PATIENT");
    row("pair unknown", {"--pair", "MV=1", "%1/one"}, 1, "there is no pump \"MV\" to pair");
    row("watch alone", {"--watch-only", "%1/one"}, 2, "--watch-only: needs --record");
    row("replay a scenario", {"--replay", "x", "--seed", "1", "%1/one"}, 2, "--replay: plays what was recorded");
    row("drive missing", {"%1/three"}, 1, "/three: there is no such folder");
    row("file for MISC", {"%1/file"}, 1, "/file/MISC: the folder can't be made");
    row("no scenario", {"--scenario", "%1/none.json", "%1/one"}, 1, "/none.json: ");
    row("bad scenario", {"--scenario", "%1/bad.json", "%1/one"}, 1, "/bad.json: times.reed: unknown field");
    row("log in no folder", {"--log", "%1/none/log", "%1/one"}, 1, "/none/log: ");
    row("bad recording", {"--replay", "%1/bad.jsonl", "%1/one"}, 1,
        "/bad.jsonl: line 2: file: \"../x\" isn't a file of the reader");
}

void TestReaderProgramProcess::endsWithItsStatus()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, words);
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("file")) && write(drive(QStringLiteral("file/MISC")), {}));
    QVERIFY(write(drive(QStringLiteral("bad.json")), R"({"times": {"reed": 1}})"));
    QVERIFY(write(drive(QStringLiteral("bad.jsonl")), "{\"ms\":0,\"file\":\"MISC/STATUS.TXT\",\"text\":\"\"}\n"
                                                      "{\"ms\":0,\"file\":\"../x\",\"text\":\"\"}\n"));
    for (QString& argument : arguments)
        argument.replace(QStringLiteral("%1"), m_folder->path());

    QProcess process;
    process.start(Program, arguments);
    QVERIFY(process.waitForFinished(LimitMs));
    QTEST(process.exitCode(), "status");
    const QString told = QString::fromUtf8(process.readAllStandardError());
    QVERIFY2(told.contains(words), qPrintable(told));
    QCOMPARE(told.count(QLatin1Char('\n')), words.isEmpty() ? 0 : 1);
    QCOMPARE(process.readAllStandardOutput().isEmpty(), !words.isEmpty());
}

void TestReaderProgramProcess::servesUntilItIsStopped()
{
    const QStringList arguments{drive(QStringLiteral("one")), QStringLiteral("--instant")};
    Reader reader(arguments);
    QCOMPARE(reader.announcement, QStringLiteral("merivo-reader: serving ") + drive(QStringLiteral("one")));

    QProcess second;
    second.start(Program, arguments);
    QVERIFY(second.waitForFinished(LimitMs));
    QCOMPARE(second.exitCode(), 1);
    QVERIFY(second.readAllStandardError().contains("another reader serves this drive"));

    QCOMPARE(reader.stop(), 0);
    QVERIFY(!QFile::exists(drive(QStringLiteral("one/.merivo-reader.lock"))));
}

void TestReaderProgramProcess::endsWhenItsDriveGoes()
{
    Reader reader({drive(QStringLiteral("one")), QStringLiteral("--log"), drive(QStringLiteral("log"))});
    QVERIFY(QDir(drive(QStringLiteral("one/MISC"))).removeRecursively());
    QCOMPARE(reader.waitForEnd(), 1);
    QCOMPARE(
        reader.told(),
        QStringLiteral("merivo-reader: %1: the folder has gone\n").arg(drive(QStringLiteral("one/MISC"))).toUtf8());
}

void TestReaderProgramProcess::replaysWhatItRecorded()
{
    const QString recording = drive(QStringLiteral("traffic.jsonl"));
    const QString watched = drive(QStringLiteral("watched.jsonl"));
    const QString one = drive(QStringLiteral("one"));
    const QString two = drive(QStringLiteral("two"));
    QByteArray paired;
    QByteArray read;
    {
        Reader reader({one, QStringLiteral("--instant"), QStringLiteral("--pair"), QStringLiteral("MV-204817=p1"),
                       QStringLiteral("--record"), recording});
        Reader watcher({one, QStringLiteral("--record"), watched, QStringLiteral("--watch-only")});
        QCOMPARE(watcher.announcement, QStringLiteral("merivo-reader: watching ") + one);
        paired = ask(one, "BTISPAIRED p1", "done");
        read = ask(one, "BTREAD \"MV-204817\"", "done");
        QCOMPARE(watcher.stop(), 0);
        QCOMPARE(reader.stop(), 0);
    }
    const QByteArray exchange = contentOf(one + QStringLiteral("/MISC/IMV-204817_0001.xml"));
    QVERIFY(exchange.size() > 20000);

    for (const QString& file : {recording, watched}) {
        QDir(two).removeRecursively();
        QVERIFY(QDir().mkdir(two));
        Reader replay({two, QStringLiteral("--replay"), file});
        QVERIFY(QFile::exists(two + QStringLiteral("/MISC/VERSION.log")));
        QCOMPARE(ask(two, "BTISPAIRED p1", "done"), paired);
        QCOMPARE(ask(two, "BTREAD \"MV-204817\"", "done"), read);
        QVERIFY(contentOf(two + QStringLiteral("/MISC/IMV-204817_0001.xml")) == exchange);
        QCOMPARE(replay.stop(), 0);
    }
}

QTEST_GUILESS_MAIN(TestReaderProgramProcess)

#include "test_reader_program_process.moc"

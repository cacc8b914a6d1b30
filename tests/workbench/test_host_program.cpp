// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/HostDatabase.h"
#include "workbench/host/RobotScript.h"

#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

struct Result
{
    int exitCode = -1;
    QByteArray output;
    QByteArray error;
};

Result runHost(const QStringList& arguments, const QString& folder)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(QStringLiteral(MERIVO_HOST_PROGRAM), arguments);
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return {-2, process.readAllStandardOutput(), "the program didn't end: " + process.readAllStandardError()};
    }
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
            process.readAllStandardError()};
}

bool writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The program as a process, with a plug-in of the tests, and the grammar of its steps.
class HostProgramTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void wrongStepIsNamedByItsLine_data();
    void wrongStepIsNamedByItsLine();
    void stepsAreRead();
    void wrongCallAndBadFilesAreTold_data();
    void wrongCallAndBadFilesAreTold();
    void robotDoesWhatAUserDoes();
    void robotNamesTheFirstStepThatFails_data();
    void robotNamesTheFirstStepThatFails();

private:
    Result runRobot(const QByteArray& steps, const QStringList& more = {});
    QString file(const char* name) const { return m_folder->filePath(QLatin1String(name)); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

Result HostProgramTest::runRobot(const QByteArray& steps, const QStringList& more)
{
    if (!writeFile(file("steps.txt"), steps))
        return {-3, {}, "the steps can't be written"};
    return runHost(QStringList{"--database", "host.sqlite", "--plugin", FIXTURE_PLUGIN, "--robot", "steps.txt"} + more,
                   m_folder->path());
}

void HostProgramTest::wrongStepIsNamedByItsLine_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("error");
    QTest::newRow("verb") << "jump m_Button"
                          << "unknown step 'jump'";
    QTest::newRow("too few") << "click"
                             << "takes 1 words, not 0";
    QTest::newRow("too many") << "quit now"
                              << "takes 0 words, not 1";
    QTest::newRow("open quote") << "click \"a"
                                << "a quote isn't closed";
    QTest::newRow("glued quote") << "click \"a\"b"
                                 << "touches the word beside it";
    QTest::newRow("quote inside") << "click a\"b\""
                                  << "touches the word beside it";
    QTest::newRow("state") << "wait a shiny"
                           << "unknown state 'shiny'";
    QTest::newRow("text without comparison") << "wait a text b"
                                             << "text takes 'equals' or 'contains'";
    QTest::newRow("dialog") << "wait dialog a shut"
                            << "'open' or 'closed'";
    QTest::newRow("box") << "wait box name a"
                         << "box takes";
    QTest::newRow("answer") << "answer Yes title"
                            << "'answer' takes a button";
    QTest::newRow("imports") << "expect imports some"
                             << "imports takes a count";
    QTest::newRow("rows") << "expect a rows -1"
                          << "rows takes a count";
    QTest::newRow("within") << "click a within soon"
                            << "'within' takes seconds";
    QTest::newRow("within 0") << "click a within 0"
                              << "'within' takes seconds";
    QTest::newRow("limit") << "limit nan"
                           << "isn't a limit";
}

void HostProgramTest::wrongStepIsNamedByItsLine()
{
    QFETCH(QString, line);
    QFETCH(QString, error);
    RobotScript script;
    QString told;
    QVERIFY(!script.parse(QStringLiteral("s.txt"), QStringLiteral("# steps\r\n\nquit\n") + line, &told));
    QVERIFY2(told.startsWith(QLatin1String("s.txt:4: ")), qPrintable(told));
    QVERIFY2(told.contains(error), qPrintable(told));
    QVERIFY(script.steps().isEmpty());
}

void HostProgramTest::stepsAreRead()
{
    RobotScript script;
    QString error;
    const QString text = QStringLiteral("wait a text contains \"x \\\"y\\\" \\\\ \\n\"  within 1.5\r\n"
                                        "limit 60\n\tclick within\ntype a \"\"\n");
    QVERIFY2(script.parse(QStringLiteral("s"), text, &error), qPrintable(error));
    QCOMPARE(script.steps().size(), 3);
    QCOMPARE(script.steps().at(0).words.last(), QStringLiteral("x \"y\" \\ \n"));
    QCOMPARE(script.steps().at(0).limit.count(), 1500);
    QCOMPARE(script.steps().at(1).line, 3);
    QCOMPARE(script.steps().at(1).words, QStringList{QStringLiteral("within")});
    QCOMPARE(script.steps().at(1).limit.count(), 60000);
    QCOMPARE(script.steps().at(2).words.last(), QString());
    QVERIFY(!script.parse(QStringLiteral("s"), QStringLiteral("# nothing\n"), &error));
    QVERIFY(!script.load(m_folder->path(), &error));
}

void HostProgramTest::wrongCallAndBadFilesAreTold_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("error");
    const QStringList good{"--database", "new.sqlite", "--plugin", FIXTURE_PLUGIN, "--robot", "quit.txt"};
    const auto with = [&good](const QString& option, const QString& value) {
        QStringList arguments = good;
        const int at = arguments.indexOf(option);
        if (at < 0)
            return arguments + QStringList{option, value};
        arguments[at + 1] = value;
        return arguments;
    };
    QTest::newRow("good") << good << 0 << "";
    QTest::newRow("unknown option") << QStringList{"--databse", "a"} << 2 << "Unknown option 'databse'";
    QTest::newRow("argument") << QStringList{"a.sqlite"} << 2 << "unexpected argument 'a.sqlite'";
    QTest::newRow("no value") << QStringList{"--database"} << 2 << "Missing value";
    QTest::newRow("empty value") << QStringList{"--database", ""} << 2 << "--database needs a value";
    QTest::newRow("twice") << good + good << 2 << "more than once";
    QTest::newRow("json alone") << QStringList{"--json"} << 2 << "need --robot";
    QTest::newRow("drive and simulation") << good + QStringList{"--drive", "a", "--simulation", "b"} << 2 << "exclude";
    QTest::newRow("locale") << with("--locale", "xx_YY") << 2 << "no locale 'xx_YY'";
    QTest::newRow("patient") << with("--patient", "P-9") << 1 << "no patient 'P-9'";
    QTest::newRow("no library") << with("--plugin", "none.so") << 1 << "there is no such file";
    QTest::newRow("text as library") << with("--plugin", "quit.txt") << 1 << "not a plug-in library";
    QTest::newRow("no plug-in") << with("--plugin", FIXTURE_NOT_A_PLUGIN) << 1 << "not a plug-in library";
    QTest::newRow("wrong id") << with("--plugin", FIXTURE_WRONG_IID) << 1 << "has the interface id";
    QTest::newRow("database") << with("--database", "quit.txt") << 1 << "isn't a database";
    QTest::newRow("log") << with("--log", "none/log") << 1 << "log file";
    QTest::newRow("no steps") << with("--robot", "none.txt") << 1 << "none.txt";
    QTest::newRow("wrong step") << with("--robot", "wrong.txt") << 1 << "wrong.txt:2: unknown step";
}

void HostProgramTest::wrongCallAndBadFilesAreTold()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, error);
    QVERIFY(writeFile(file("quit.txt"), "quit\n" + QByteArray(600, '#')));
    QVERIFY(writeFile(file("wrong.txt"), "quit\njump\n"));
    const QByteArray before = contentOf(file("quit.txt"));
    const Result result = runHost(arguments, m_folder->path());
    QVERIFY2(result.exitCode == exitCode, result.error);
    QVERIFY2(QString::fromLocal8Bit(result.error).contains(error), result.error);
    QCOMPARE(result.error.count('\n'), exitCode == 0 ? 0 : 1);
    QCOMPARE(contentOf(file("quit.txt")), before);
    if (exitCode != 0)
        return;
    for (const char* option : {"--help", "--version"}) {
        const Result shown = runHost({QLatin1String(option)}, m_folder->path());
        QCOMPARE(shown.exitCode, 0);
        QVERIFY2(shown.output.contains("merivo-host") && shown.error.isEmpty(), shown.error);
    }
}

void HostProgramTest::robotDoesWhatAUserDoes()
{
    const Result result =
        runRobot(R"(
patient P-1 Doe Jane 1970-02-03
open P-1
trigger Fixture
wait dialog FixtureDialog open
expect patientLabel text equals "Patient: P-1"
expect askButton disabled
type edit "new \"text\""
wait echo text equals "new \"text\""
click check
click askButton
wait box title "Fixture question" text "Think twice"
picture box
answer Yes title "Fixture question"
wait patientLabel text equals yes
key Space askButton
wait dialog QMessageBox open
key Escape
wait patientLabel text equals no
# The host's events go on in the middle of the plug-in's run.
patient P-1 Roe Jane
wait log changed
click importButton
wait messageText text contains "its MAC doesn't match"
expect imports 0
click FixtureDialog/buttons/Close
wait dialog FixtureDialog closed
click addPatientButton
type familyName Novak
type birthday 1990-02-30
wait PatientDialog/buttons/Save disabled
type birthday 1990-02-28
type puid P-2
click PatientDialog/buttons/Save
row patientTable P-2
key Ctrl+O
wait diary P-2
click deletePatientButton
answer Delete text Novak
wait patientTable rows 1
expect diary closed
picture sub/window HostWindow
quit
)",
                 {"--json", "--pictures", "pictures", "--log", "host.log", "--simulation", "sim", "--locale", "de_DE"});
    QVERIFY2(result.exitCode == 0, result.output + result.error);
    QCOMPARE(result.error, QByteArray());
    const QList<QByteArray> lines = result.output.trimmed().split('\n');
    QCOMPARE(lines.size(), 41);
    for (int i = 0; i < lines.size(); ++i) {
        const QJsonObject object = QJsonDocument::fromJson(lines.at(i)).object();
        QCOMPARE(object.value(QLatin1String("step")).toInt(), i + 1);
        QCOMPARE(object.value(QLatin1String("outcome")).toString(), QStringLiteral("ok"));
        QVERIFY(object.value(QLatin1String("milliseconds")).isDouble());
        QVERIFY(!object.value(QLatin1String("text")).toString().isEmpty());
    }
    QVERIFY(QImage(file("pictures/box.png")).width() > 100);
    QVERIFY(QImage(file("pictures/sub/window.png")).width() > 800);

    HostDatabase database;
    QVERIFY(database.open(file("host.sqlite")));
    QCOMPARE(database.patients().size(), 1);
    QCOMPARE(database.findPatient(QStringLiteral("P-1"))->ids.value(0), QStringLiteral("Roe"));

    // The calls came in their order, and the plug-in went while the host was still there to hear of it.
    const QString log = QString::fromUtf8(contentOf(file("host.log")));
    int at = 0;
    for (const char* record :
         {"mcp\tFixture\tregistry\tcomplete", "Fixture\tinitialize\ttruesim", "Fixture\tinstallTranslator\tde_DE",
          "txt\tFixture\topened\tDoe|Jane|1970-02-03|", "Warning\tFixture\tchanged\tRoe|Jane", "Error\thost\tImport of",
          "Fixture\tclosed", "Fixture\tdestroyed"}) {
        const int found = log.indexOf(QLatin1String(record), at);
        QVERIFY2(found >= at, record);
        at = found;
    }
}

void HostProgramTest::robotNamesTheFirstStepThatFails_data()
{
    QTest::addColumn<QByteArray>("step");
    QTest::addColumn<QByteArray>("seen");
    QTest::newRow("text") << QByteArray("expect edit text equals new") << QByteArray("its text is 'old'");
    QTest::newRow("missing") << QByteArray("click noSuchButton") << QByteArray("there is no such 'noSuchButton'");
    QTest::newRow("disabled") << QByteArray("click askButton") << QByteArray("'askButton' is disabled");
    QTest::newRow("behind") << QByteArray("click addPatientButton") << QByteArray("'addPatientButton' is");
    QTest::newRow("box") << QByteArray("answer Yes") << QByteArray("open: ");
    QTest::newRow("quit") << QByteArray("quit") << QByteArray("the window stays open");
    QTest::newRow("imports") << QByteArray("wait imports 1") << QByteArray("the open patient has 0");
    QTest::newRow("key") << QByteArray("key Nokey") << QByteArray("there is no key 'Nokey'");
    QTest::newRow("picture") << QByteArray("picture steps.txt/a") << QByteArray("can't be written");
    QTest::newRow("entry") << QByteArray("trigger Other") << QByteArray("the menu has the entries: Fixture");
}

void HostProgramTest::robotNamesTheFirstStepThatFails()
{
    QFETCH(QByteArray, step);
    QFETCH(QByteArray, seen);
    QElapsedTimer clock;
    clock.start();
    // The dialog stays open: the run ends all the same.
    const Result result =
        runRobot("limit 1\npatient P-1 Doe\nopen P-1\ntrigger\nwait dialog FixtureDialog open\n" + step + "\nquit\n");
    QVERIFY2(result.exitCode == 1, result.output + result.error);
    QVERIFY2(result.error.startsWith("merivo-host: steps.txt:6: step failed: " + step + ": "), result.error);
    QVERIFY2(result.error.contains(seen), result.error);
    QCOMPARE(result.output.count(" ok "), 4);
    QCOMPARE(result.output.count(" FAILED "), 1);
    QVERIFY(clock.elapsed() < 20000);
}

QTEST_GUILESS_MAIN(HostProgramTest)

#include "test_host_program.moc"

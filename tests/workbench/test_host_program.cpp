// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "commands/ImportDataCommand.h"
#include "plugin/session/PatientSession.h"
#include "workbench/Programs.h"
#include "workbench/host/ExtensionPoints.h"
#include "workbench/host/HostDatabase.h"
#include "workbench/host/HostDeviceAdmin.h"
#include "workbench/host/HostLog.h"
#include "workbench/host/ImportHandler.h"
#include "workbench/host/PatientEvents.h"
#include "workbench/host/RobotScript.h"

#include <QImage>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTextStream>

#include <memory>
#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

const QStringList Usual{"--database=new", "--plugin=" MERIVO_PLUGIN_LIBRARY, "--robot=steps"};
const PatientRecord Jane{"P-1", {"Doe", "Jane", "", "X"}};

const QByteArray Bulk(2 * 1024 * 1024, 'x'); // large enough for a kill in the middle of its storing

/// The MAC is the number: the database takes any, and a real one would cost more time than the storing.
bool addImport(HostDatabase& database, int number, const QString& puid = Jane.puid)
{
    const QString mac = QString::number(number).rightJustified(64, '0');
    ImportFacts facts{0, puid, QDateTime::currentDateTimeUtc(), "I1.xml", 1, mac, "reader"};
    return database.addImport(facts, Bulk + mac.toUtf8());
}

} // namespace

class TestHostProgram final : public QObject
{
    Q_OBJECT

private:
    QString file(const QString& name) const { return m_folder->filePath(name); }
    /// The first value that another program gets from a database. It is still there, with its locks, until the next.
    QString sql(const QString& name, const QString& statement)
    {
        m_other.close();
        m_other.setDatabaseName(file(name));
        m_other.open();
        QSqlQuery query(statement, m_other);
        return query.next() ? query.value(0).toString() : QString();
    }
    /// What the robot of a host with the plug-in writes about the steps, and the program's end.
    QString robot(QString steps, const QStringList& more = {})
    {
        write(file("steps"), steps.replace("; ", "\n").toUtf8());
        Program host(MERIVO_HOST_PROGRAM, Usual + more, m_folder->path());
        const QString end = host.end();
        return host.readAll() + end;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<HostDatabase> m_database;
    QSqlDatabase m_other = QSqlDatabase::addDatabase("QSQLITE", "other");

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_database = std::make_unique<HostDatabase>();
        QVERIFY2(m_database->open(file("db")) && m_database->addPatient(Jane), qPrintable(m_database->errorText()));
    }

    void patientsAndImportsKeepTogether()
    {
        const PatientRecord odd{"a.B_9-", {"O'Brien; --", "\u00c5sa", "", ""}};
        QVERIFY(m_database->addPatient(odd) && addImport(*m_database, 1) && addImport(*m_database, 1, odd.puid));
        QVERIFY(!m_database->addPatient(odd) && m_database->errorText().contains("already"));
        HostLog log;
        DatabasePoint point(log, *m_database);
        const auto name = [&] {
            return point.patients(m_database->guid()).value(Jane.puid).ids.value(0);
        };
        QCOMPARE(name(), QString("Doe"));
        sql("db", "UPDATE patients SET name1 = 'Roe' WHERE puid = 'P-1'"); // by another program
        QCOMPARE(name(), QString("Roe"));
        sql("db", "BEGIN EXCLUSIVE");
        QVERIFY(!addImport(*m_database, 3) && m_database->errorText().contains("locked"));
        QVERIFY(name().isEmpty());
        m_other.close();
        QVERIFY2(!addImport(*m_database, 1), "the same MAC is stored twice for one patient");
        QVERIFY2(!addImport(*m_database, 2, "P-9"), "an import is stored for nobody");
        for (const char* puid : {"", "a b", "a\"b", "\u00e4", "a\n"}) // it stands unquoted in the reader's commands
            QVERIFY2(!m_database->addPatient({puid, {}}), puid);
        QVERIFY(!m_database->addPatient({"P-3", {"", "", "1970-02-30"}}));
        const QString guid = m_database->guid();
        QVERIFY(name() == "Roe" && m_database->removePatient(Jane.puid) && name().isEmpty());
        QVERIFY(m_database->open(file("db")) && m_database->guid() == guid);
        QCOMPARE(point.patients(guid).first().ids, odd.ids);
        QCOMPARE(sql("db", "SELECT group_concat(import_id) FROM import_files"), QString("2"));
    }

    void unusableDatabaseIsTold()
    {
        m_database->close();
        QVERIFY(QFile::copy(file("db"), file("cut")) && QFile::resize(file("cut"), 12288));
        QVERIFY(QFile::copy(file("db"), file("newer")) && sql("newer", "PRAGMA user_version = 2").isEmpty());
        QVERIFY(write(file("text"), QByteArray(5000, 'a')) && sql("foreign", "CREATE TABLE patients (a)").isEmpty());
        sql("db", "BEGIN EXCLUSIVE");
        const auto check = [&](const QString& name, const QString& sentence) {
            const QByteArray before = bytesOf(file(name));
            const bool isOpen = m_database->open(file(name));
            return !isOpen && m_database->errorText().contains(sentence) && bytesOf(file(name)) == before;
        };
        for (const auto& [name, sentence] : pairsOf("text = isn't a database; cut = damaged; . = is a folder\n"
                                                    "newer = schema version 2, which is newer; none/db = can't be\n"
                                                    "foreign = of another program; db = locked by another program"))
            QVERIFY2(check(name, sentence), qPrintable(m_database->errorText()));
        m_other.close();
#ifdef Q_OS_UNIX
        const QFile::Permissions readable(0x5055);
        QVERIFY(QFile::setPermissions(file("db"), readable) && QFile::setPermissions(m_folder->path(), readable));
        QVERIFY(geteuid() != 0 || seteuid(65534) == 0); // no permission stops root
        const bool isTold = check("db", "read-only");
        QVERIFY(seteuid(getuid()) == 0 && QFile::setPermissions(m_folder->path(), QFile::Permissions(0x7000)));
        QVERIFY2(isTold, qPrintable(m_database->errorText()));
#endif
    }

    void killInMidImportLeavesAllOrNothing()
    {
        m_database->close();
        int told = 0;
        int killedInMid = 0;
        qint64 lastChecked = 0;
        for (int round = 1; round <= 25; ++round) {
            Program child(QCoreApplication::applicationFilePath(), {"--import", file("db")});
            QVERIFY(child.waitForReadyRead());
            QTest::qSleep(round * 2); // another moment of an import each time
            child.kill();
            QVERIFY(child.waitForFinished());
            told += child.readAll().count('\n');
            // The journal is there from the first write of a transaction to its end.
            killedInMid += QFile::exists(file("db-journal")) ? 1 : 0;

            QVERIFY2(m_database->open(file("db")), qPrintable(m_database->errorText()));
            const QVector<ImportFacts> imports = m_database->imports(Jane.puid);
            QVERIFY2(imports.size() >= told, "an import that was told as stored is gone");
            for (int i = 0; i < imports.size() && imports[i].id > lastChecked; ++i)
                QVERIFY(m_database->importedFile(imports[i].id) == Bulk + imports[i].mac.toUtf8());
            lastChecked = imports.first().id;
            told = imports.size(); // the last one can be stored without having been told
            m_database->close();
        }
        QVERIFY2(killedInMid > 0, "no kill came in the middle of a transaction");
    }

    void importIsCheckedAndStored()
    {
        QVERIFY(write(file("I1.xml"), "<history>") && write(file("I2.xml"), "<history>") && write(file("none"), ""));
        PatientEvents events;
        HostLog log;
        HostDeviceAdmin deviceAdmin;
        deviceAdmin.setDrivePath(m_folder->path());
        QVERIFY(deviceAdmin.setDeviceHold(true) && !deviceAdmin.setDeviceHold(true));
        ImportHandler handler(*m_database, events, log, deviceAdmin);
        QStringList seen;
        connect(&events, &IEventPublisher::commandFailed, this, [&] { seen << "failed"; });
        connect(&events, &IEventPublisher::commandSucceeded, this, [&] { seen << "succeeded"; });
        connect(&handler, &ImportHandler::finished, this, [&](const ImportOutcome& told) {
            seen = QStringList{QString::number(told.kind), told.sentence};
        });
        const auto import = [&](const char* puid, const char* name, const char* otherGuid, const char* sentence) {
            auto* command = new ImportDataCommand(this); // the handler takes it over
            command->m_puid = puid;
            command->m_databaseGuid = m_database->guid() + otherGuid;
            PatientSession::instance()->setExchangeFilePath(file(name));
            seen << QString::number(handler.execute(command) * 10 + m_database->imports("P-1").size());
            return log.contains(sentence) && seen.at(1).contains(sentence) ? seen.last() + seen.at(2) : seen.join(' ');
        };
        QCOMPARE(import("P-1", "I1.xml", "other", "its MAC doesn't match"), QString("0failed"));
        QCOMPARE(import("P-2", "I1.xml", "", "there is no patient 'P-2'"), QString("0failed"));
        QCOMPARE(import("P-1", "gone.xml", "", "gone.xml' can't be read"), QString("0failed"));
        QCOMPARE(import("P-1", "none", "", "none' is empty"), QString("0failed"));
        QCOMPARE(import("P-1", "I1.xml", "", "'I1.xml' imported: 9 bytes"), QString("11succeeded"));
        QCOMPARE(import("P-1", "I2.xml", "", "'I2.xml' holds what was imported on"), QString("11succeeded"));
        ICommand query(ICommand::QueryDiary);
        QVERIFY(!handler.execute(&query) && log.contains("type 5") && !handler.execute(nullptr));
        const ImportFacts facts = m_database->imports("P-1").first();
        QCOMPARE(facts.fileName + ' ' + facts.deviceState, QString("I1.xml reader held"));
        QVERIFY(qAbs(facts.importedAt.secsTo(QDateTime::currentDateTimeUtc())) < 60 && facts.fileSize == 9);
        QCOMPARE(m_database->importedFile(facts.id).value(), QByteArray("<history>"));
    }

    void logTableComesToTheLatestRecord()
    {
        HostLog log;
        for (int i = 0; i < 20500; ++i)
            log.write("host", "mcp", QString::number(i));
        QVERIFY(log.rowCount() == 20000 && log.contains("20499"));
        QTRY_COMPARE(log.rowCount(), 18500);
        QCOMPARE(log.index(0, HostLog::MessageColumn).data().toString(), QString("2000"));
        QCOMPARE(log.index(18499, HostLog::MessageColumn).data().toString(), QString("20499"));
    }

    void eventsTellTheOpenDiary()
    {
        PatientEvents events;
        QStringList seen;
        connect(&events, &IEventPublisher::diarySessionOpened, this,
                [&](const IDiarySessionOpenedEvtPtr& event) { seen << "opened " + event->puid() + event->pid(1); });
        connect(&events, &IEventPublisher::patientChanged, this,
                [&](const IPatientChangedEvtPtr& e) { seen << "changed " + e->puid() + events.openPatient().ids[0]; });
        connect(&events, &IEventPublisher::diarySessionClosed, this, [&] { seen << "closed"; });
        connect(&events, &IEventPublisher::patientDeleted, this, [&] { seen << "deleted"; });
        events.closeDiary();
        events.openDiary(Jane);
        events.publishChanged({Jane.puid, {"Roe"}});
        events.openDiary({"P-2", {}});
        events.publishDeleted(Jane.puid);
        events.publishDeleted("P-2");
        QCOMPARE(seen.join(' '), QString("opened P-1Jane changed P-1Roe closed opened P-2 deleted closed deleted"));
    }

    void stepsAreRead()
    {
        RobotScript script;
        QString told;
        const QString wrong =
            "jump m_Button = unknown step 'jump'; click = takes 1 words, not 0; quit now = takes 0 words, not 1\n"
            "click \"a = a quote isn't closed; click \"a\"b = touches the word; click a\"b\" = touches the word\n"
            "wait a shiny = none of the conditions: box; limit nan = isn't a time; pause 0 = isn't a time; wait dialog "
            "a "
            "shut = none of the conditions\n"
            "wait a text b = text equals|contains TEXT; wait box name a = box [title T]\n"
            "expect imports some = imports COUNT; expect a rows -1 = NAME rows COUNT\n"
            "click a within soon = 'within' takes; click a within 0 = 'within' takes; answer Yes title = 'answer' "
            "takes\nkey Blank = there is no key 'Blank'; patient P-1 Doe Jane 1970-02-30 = isn't a birthday\n"
            "patient \u00e4 Doe = can't be a patient's key; wait a page = NAME page PAGE; include gone = gone: No";
        for (const auto& [step, error] : pairsOf(wrong)) {
            QVERIFY(!script.parse("s", "# steps\r\n\nquit\n" + step, &told));
            QVERIFY2(told.startsWith("s:4: ") && told.contains(error), qPrintable(told));
        }
        QVERIFY(write(file("s"), "quit\ninclude s"));
        QVERIFY2(!script.load(file("s"), &told) && told.contains("include each other without an end"),
                 qPrintable(told));
        QString steps = "wait a text contains \"x \\\"y\\\" \\\\ \\n\"  within 1.5\r\nlimit 60\n\tclick within\n";
        QVERIFY2(script.parse("s", steps + "type a \"\"\n", &told), qPrintable(told));
        steps.clear();
        for (const RobotStep& step : script.steps())
            steps += QString("%1 %2 %3#").arg(step.line).arg(step.limit.count()).arg(step.words.join('|'));
        QCOMPARE(steps, QString("1 1500 a|text|contains|x \"y\" \\ \n#3 60000 within#4 60000 a|#"));
    }

    void programEndsWithItsStatus()
    {
        QVERIFY(write(file("steps"), "quit") && write(file("wrong"), "quit\njump\n"));
        QVERIFY(QFile::copy(FIXTURE_WRONG_IID, file("iid.so")) && QFile::copy(FIXTURE_NOT_A_PLUGIN, file("no.so")));
        const QString calls =
            "--log=log = 0 ; --databse=a = 2 Unknown option 'databse'; --log= = 2 --log needs a value\n"
            "a.sqlite = 2 unexpected argument 'a.sqlite'; --log=a --log=b = 2 --log is given more than once\n"
            "--drive=a --simulation=b = 2 --drive and --simulation exclude; --locale=xx_YY = 2 --locale: there is no\n"
            "--patient=P-9 = 1 no patient 'P-9'; --log=none/log = 1 log file; --database=steps = 1 isn't a database\n"
            "--robot=wrong = 1 wrong:2: unknown step; --plugin=steps = 1 not a plug-in; --simulation=none = 1 no "
            "folder\n"
            "--plugin=no.so = 1 not a plug-in library; --plugin=iid.so = 1 has the interface id";
        for (const auto& [given, end] : pairsOf(calls)) {
            QStringList arguments = given.split(' ');
            for (const QString& option : Usual)
                if (!given.contains(option.section('=', 0, 0)))
                    arguments << option;
            Program program(MERIVO_HOST_PROGRAM, arguments, m_folder->path());
            const QString told = program.end();
            QVERIFY2(told.startsWith(end.left(2)) && told.contains(end.mid(2)) && told.count('\n') == int(end != "0 "),
                     qPrintable(given + told));
        }
    }

    void robotDoesWhatAUserDoes()
    {
        const QString told = robot(
            "patient P-1 Doe Jane 1970-02-03; open P-1; trigger; wait m_SimulationLabel text contains '.'\n"
            "answer Ok text responding within 30; wait log \"<-- Plugin component execution finished\" within 20\n"
            "click addPatientButton; type familyName Novak; type birthday 1990-02-30\n"
            "wait PatientDialog/buttons/Save disabled; type birthday \"\"; type puid P-2\n"
            "click PatientDialog/buttons/Save; row patientTable P-2; key Ctrl+O; wait diary P-2\n"
            "click deletePatientButton; answer Delete text Novak; wait patientTable rows 1; expect diary closed\n"
            "picture sub/window HostWindow; patient P-1 Roe; quit",
            {"--json", "--pictures=pictures", "--simulation=."});
        QVERIFY2(told.endsWith("}\n0 ") && told.count("\"outcome\":\"ok\"") == 23, qPrintable(told));
        QVERIFY(QImage(file("pictures/sub/window.png")).width() > 800);
        QVERIFY(m_database->open(file("new")) && m_database->findPatient("P-1")->ids.first() == "Roe");
    }

    void robotNamesTheFirstStepThatFails()
    {
        const QString steps =
            "expect m_x text equals new = there is no 'm_x'; wait imports 1 = patient 'P-1' has 0\n"
            "click patientTable = 'patientTable' is behind a modal; answer Yes = the box has no button\n"
            "picture steps/a = './steps/a.png' can't be written; quit = the window stays open";
        for (const auto& [step, seen] : pairsOf(steps)) {
            // The box that there is no reader stays open: the run ends all the same.
            const QString told = robot("limit 1; patient P-1 Doe; open P-1; trigger; wait box text Lumo; " + step);
            const QString expected = "\n1 merivo-host: steps:6: step failed: " + step + ": " + seen;
            QVERIFY2(told.count(" ok ") == 4 && told.contains(expected), qPrintable(told));
        }
    }
};

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (argc > 2 && qstrcmp(argv[1], "--import") == 0) {
        HostDatabase database; // the child that is killed: it imports for ever, and tells what it has stored
        database.open(argv[2]);
        for (int number = database.imports(Jane.puid).size(); addImport(database, number); ++number)
            QTextStream(stdout) << number << '\n';
        return 1;
    }
    TestHostProgram test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_host_program.moc"

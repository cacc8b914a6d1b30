// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "base/PatientSession.h"
#include "hostcommands/ImportDataCommand.h"
#include "tools/Programs.h"
#include "tools/host/ExtensionPoints.h"
#include "tools/host/HostDatabase.h"
#include "tools/host/HostDeviceAdmin.h"
#include "tools/host/HostLog.h"
#include "tools/host/ImportHandler.h"
#include "tools/host/PatientEvents.h"

#include <QImage>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <memory>
#include <tuple>

namespace {

const PatientRecord Jane{"P-1", {"Doe", "Jane", "", "X"}};

/// Adds an import with a MAC made of the number: the database takes any.
bool addImport(HostDatabase& database, int number, const QString& puid = Jane.puid)
{
    ImportFacts facts;
    facts.puid = puid;
    facts.importedAt = QDateTime::currentDateTimeUtc();
    facts.mac = QString::number(number).rightJustified(64, '0');
    return database.addImport(facts, facts.mac.toUtf8());
}

} // namespace

class TestHostProgram final : public QObject
{
    Q_OBJECT

private:
    QString file(const QString& name) const { return m_folder->filePath(name); }
    /// Returns the first value that another program gets from a database. That program has it open, with its locks,
    /// until the next call.
    QString sql(const QString& name, const QString& statement)
    {
        m_other.close();
        m_other.setDatabaseName(file(name));
        m_other.open();
        QSqlQuery query(statement, m_other);
        return query.next() ? query.value(0).toString() : QString();
    }
    /// Runs the host with the plug-in and a robot, unless the options name others. Returns its output and its end.
    QString runHost(const QString& steps, const QStringList& options = {})
    {
        write(file("steps"), steps.toUtf8());
        QStringList arguments = options;
        for (const char* usual : {"--database=new", "--plugin=" MERIVO_PLUGIN_LIBRARY, "--robot=steps"})
            if (options.filter(QString(usual).section('=', 0, 0)).isEmpty())
                arguments << usual;
        Program host(MERIVO_HOST_PROGRAM, arguments, m_folder->path());
        const QString end = host.end();
        return QString(host.readAll()).remove('\r') + end;
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

    void cleanup()
    {
        m_other.close();
        m_database.reset(); // before its folder is removed
    }

    void importIsStoredInOneTransactionForItsPatient()
    {
        QVERIFY(m_database->addPatient({"P-2", {"O'Brien; --"}}) && addImport(*m_database, 1, "P-2"));
        QVERIFY(addImport(*m_database, 1));
        QVERIFY2(!addImport(*m_database, 1), "the same MAC is stored twice for one patient");
        QVERIFY2(!addImport(*m_database, 2, "P-9"), "an import is stored for nobody");
        // The second of the two statements of an import fails.
        sql("db", "CREATE TRIGGER t BEFORE INSERT ON import_files BEGIN SELECT RAISE(ABORT, 'not now'); END");
        QVERIFY(!addImport(*m_database, 3) && m_database->errorText().contains("not now"));
        QCOMPARE(m_database->imports(Jane.puid).size(), 1);
        QVERIFY(m_database->removePatient(Jane.puid));
        QCOMPARE(sql("db", "SELECT group_concat(import_id) FROM import_files"), QString("1"));
    }

    void unusablePatientIsRefused()
    {
        for (const char* puid : {"P-1", "", "a b", "a\"b", "a\n"}) // reader commands contain it without quotes
            QVERIFY2(!m_database->addPatient({puid, {}}), puid);
        QVERIFY(!m_database->addPatient({"P-3", {"", "", "1970-02-30"}}));
    }

    void pluginSeesTheChangesOfOtherPrograms()
    {
        HostLog log;
        DatabasePoint point(log, *m_database);
        const auto name = [&] {
            return point.patients(point.databaseGuid(file("db"))).value(Jane.puid).ids.value(0);
        };
        QCOMPARE(name(), QString("Doe"));
        sql("db", "UPDATE patients SET name1 = 'Roe' WHERE puid = 'P-1'");
        QCOMPARE(name(), QString("Roe"));
        sql("db", "BEGIN EXCLUSIVE");
        QVERIFY(name().isEmpty() && log.contains("locked"));
        m_other.close();
        QCOMPARE(name(), QString("Roe"));
        QVERIFY(point.patients("other").isEmpty() && point.databaseGuid(file("other")).isEmpty());
    }

    void unusableDatabaseIsReportedAndUnchanged()
    {
        m_database->close();
        QVERIFY(QFile::copy(file("db"), file("cut")) && QFile::resize(file("cut"), 12288));
        QVERIFY(QFile::copy(file("db"), file("newer")) && sql("newer", "PRAGMA user_version = 2").isEmpty());
        QVERIFY(write(file("text"), QByteArray(5000, 'a')) && sql("foreign", "CREATE TABLE patients (a)").isEmpty());
        sql("db", "BEGIN EXCLUSIVE");
        const std::pair<const char*, const char*> rows[] = {
            {"text", "isn't a database"},        {"cut", "damaged"},
            {"newer", "schema version 2"},       {"foreign", "of another program"},
            {"db", "locked by another program"},
        };
        for (const auto& [name, sentence] : rows) {
            const QByteArray before = bytesOf(file(name));
            QVERIFY2(!m_database->open(file(name)) && m_database->errorText().contains(sentence), name);
            QCOMPARE(bytesOf(file(name)), before);
        }
    }

    void importIsCheckedAndStored()
    {
        QVERIFY(write(file("I1.xml"), "<history>") && write(file("I2.xml"), "<history>"));
        PatientEvents events;
        HostLog log;
        const HostDeviceAdmin deviceAdmin;
        ImportHandler handler(*m_database, events, log, deviceAdmin);
        QStringList seen;
        connect(&events, &IEventPublisher::commandFailed, this, [&] { seen << "failed"; });
        connect(&events, &IEventPublisher::commandSucceeded, this, [&] { seen << "succeeded"; });
        connect(&events, &IEventPublisher::diaryImported, this, [&] { seen << "imported"; });
        const std::tuple<const char*, const char*, const char*, bool, const char*> rows[] = {
            {"P-1", "I1.xml", "other guid", false, "its MAC doesn't match"},
            {"P-2", "I1.xml", "", false, "there is no patient 'P-2'"},
            {"P-1", "I1.xml", "", true, "'I1.xml' imported: 9 bytes"},
            {"P-1", "I2.xml", "", true, "'I2.xml' holds what was imported on"},
        };
        for (const auto& [puid, name, otherGuid, isImported, sentence] : rows) {
            auto* command = new ImportDataCommand(this); // the handler takes ownership
            command->m_puid = puid;
            command->m_databaseGuid = m_database->guid() + otherGuid;
            PatientSession::instance()->setExchangeFilePath(file(name));
            seen.clear();
            QCOMPARE(handler.execute(command), isImported);
            QVERIFY2(log.contains(sentence), sentence);
            QCOMPARE(seen.join(' '), QString(isImported ? "succeeded imported" : "failed"));
        }
        ICommand query(ICommand::QueryDiary);
        QVERIFY(!handler.execute(&query) && log.contains("type 5") && !handler.execute(nullptr));
        QCOMPARE(m_database->imports("P-1").size(), 1);
    }

    void programEndsWithItsStatus()
    {
        // The plug-in with the interface id of another build in its metadata.
        QVERIFY(write(file("iid.so"), bytesOf(MERIVO_PLUGIN_LIBRARY).replace("lm2c.RC", "lm2d.RC")));
        QVERIFY(QFile::copy(NOT_A_PLUGIN, file("no.so")));
        const std::tuple<const char*, const char*, const char*> rows[] = {
            {"quit", "--log=log", "0 "},
            {"quit", "--databse=a", "2 merivo-host: Unknown option 'databse'"},
            {"quit", "--drive=a --simulation=b", "2 merivo-host: --drive and --simulation exclude"},
            {"quit", "--patient=P-9", "1 merivo-host: --patient: there is no patient 'P-9'"},
            {"quit", "--database=steps", "1 merivo-host: database '"},
            {"quit", "--plugin=no.so", "1 merivo-host: plug-in 'no.so': not a plug-in library"},
            {"quit", "--plugin=iid.so", "1 merivo-host: plug-in 'iid.so': has the interface id"},
            {"# steps\n\nquit\njump m_Button", "--log=log", "1 merivo-host: steps:4: unknown step 'jump'"},
            {"click", "--log=log", "1 merivo-host: steps:1: write click NAME"},
            {"quit\ntype \"a", "--log=log", "1 merivo-host: steps:2: unterminated quote"},
            {"click a within soon", "--log=log", "1 merivo-host: steps:1: 'within' takes seconds"},
        };
        for (const auto& [steps, options, end] : rows) {
            const QString output = runHost(steps, QString(options).split(' '));
            QVERIFY2(output.contains(end) && output.count('\n') == 1, qPrintable(options + output));
        }
    }

    void robotDoesWhatAUserDoes()
    {
        const QString steps = "patient P-1 Doe Jane 1970-02-03\nopen P-1\nclick pluginButton\n"
                              "wait m_SimulationLabel text contains .\nanswer Ok responding within 30\n"
                              "wait pluginButton enabled within 20\nclick addPatientButton\ntype familyName Novak\n"
                              "type birthday 1990-02-30\nwait PatientDialog/Save disabled\ntype birthday \"\"\n"
                              "type puid P-2\nclick PatientDialog/Save\nrow patientTable P-2\nkey Ctrl+O\n"
                              "wait diaryDetails text equals P-2\nclick deletePatientButton\nanswer Delete Novak\n"
                              "wait patientTable rows 1\nexpect closeDiaryButton disabled\n"
                              "picture sub/window HostWindow\npatient P-1 Roe\ntype logFilter \"plug-in Merivo\"\n"
                              "wait logTable rows 1\nclick logLevel\nkey End\nkey Return\nwait logTable rows 0\nquit";
        const QString output = runHost(steps, {"--pictures=pictures", "--simulation=."});
        QVERIFY2(output.endsWith("quit\n0 ") && output.count("  ok  ") == steps.count('\n') + 1, qPrintable(output));
        QVERIFY(QImage(file("pictures/sub/window.png")).width() > 800);
        QVERIFY(m_database->open(file("new")) && m_database->findPatient("P-1")->ids.first() == "Roe");
        QVERIFY(!m_database->findPatient("P-2"));
    }

    void robotReportsTheStepThatFails()
    {
        const std::pair<const char*, const char*> rows[] = {
            {"expect m_x text equals new", "there is no 'm_x'"},
            {"click patientTable within 0.1", "'patientTable' is blocked by a modal window"},
            {"quit within 0.1", "the window stays open"},
        };
        for (const auto& [step, seen] : rows) {
            // The message box that there is no reader stays open: the run ends all the same.
            const QString output =
                runHost(QString("patient P-1 Doe\nopen P-1\nclick pluginButton\nwait box Lumo\n%1\npause 1").arg(step));
            QVERIFY2(output.contains(QString("\n1 merivo-host: steps:5: step failed: %1: ").arg(step)) &&
                         output.contains(seen) && output.contains("; open: "),
                     qPrintable(output));
        }
    }
};

QTEST_GUILESS_MAIN(TestHostProgram)

#include "tst_host_program.moc"

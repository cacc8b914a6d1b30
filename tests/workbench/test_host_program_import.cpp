// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/fixtures/FixtureImport.h"
#include "workbench/host/HostDatabase.h"
#include "workbench/host/HostDeviceAdmin.h"
#include "workbench/host/HostLog.h"
#include "workbench/host/ImportHandler.h"
#include "workbench/host/ImportMac.h"
#include "workbench/host/PatientEvents.h"
#include "workbench/host/Watchdog.h"

#include <QMessageAuthenticationCode>
#include <QProcess>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

const PatientRecord Jane{QStringLiteral("P-1"),
                         {QStringLiteral("Doe"), QStringLiteral("Jane"), {}, QStringLiteral("X")}};

/// A connection of another program to a database file.
class OtherProgram final
{
public:
    explicit OtherProgram(const QString& path)
        : m_connection(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other")))
    {
        m_connection.setDatabaseName(path);
        m_connection.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=0"));
        m_connection.open();
    }
    ~OtherProgram()
    {
        m_connection.close();
        m_connection = {};
        QSqlDatabase::removeDatabase(QStringLiteral("other"));
    }
    Q_DISABLE_COPY_MOVE(OtherProgram)

    bool run(const char* statement) { return QSqlQuery(m_connection).exec(QLatin1String(statement)); }
    QVariant value(const char* select)
    {
        QSqlQuery query(m_connection);
        return query.exec(QLatin1String(select)) && query.next() ? query.value(0) : QVariant();
    }

private:
    QSqlDatabase m_connection;
};

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

/// A file of some size that differs from import to import.
QByteArray exchangeFile(int number)
{
    return QByteArray(2 * 1024 * 1024, 'x') + QByteArray::number(number);
}

/// Facts whose MAC is the number: the database takes any, and a real one would cost more time than the storing.
ImportFacts factsOf(int number)
{
    const QString mac = QString::number(number).rightJustified(64, QLatin1Char('0'));
    return {0, Jane.puid, QDateTime::currentDateTimeUtc(), QStringLiteral("I1.xml"), 1, mac, QStringLiteral("reader")};
}

bool addImport(HostDatabase& database, int number)
{
    ImportFacts facts = factsOf(number);
    return database.addImport(facts, exchangeFile(number));
}

/// The child process that is killed: imports, and tells each import that it got back as stored.
int importForEver(const QString& path)
{
    HostDatabase database;
    if (!database.open(path))
        return 2;
    database.addPatient(Jane);
    for (int number = database.imports(Jane.puid).size();; ++number) {
        if (!addImport(database, number))
            return 3;
        std::fprintf(stdout, "%d\n", number);
        std::fflush(stdout);
    }
}

int hang()
{
    Watchdog watchdog(7, "the child hangs");
    watchdog.expectBackWithin(std::chrono::milliseconds(100));
    watchdog.start();
    for (;;)
        QThread::sleep(1);
}

} // namespace

/// The database, the import into it and the events around it.
class HostProgramImportTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void newDatabaseHasSchemaAndSettings();
    void patientsKeepTheirTexts();
    void unusableDatabaseIsTold_data();
    void unusableDatabaseIsTold();
    void lockedDatabaseLosesNothing();
    void killInMidImportLeavesAllOrNothing();
    void macIsTheStandardOne_data();
    void macIsTheStandardOne();
    void importIsCheckedAndStored_data();
    void importIsCheckedAndStored();
    void otherCommandsAreRefused();
    void eventsTellTheOpenDiary();
    void readerComesAndGoes();
    void watchdogEndsAHangingProcess();

private:
    QString file(const char* name) const { return m_folder->filePath(QLatin1String(name)); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<HostDatabase> m_database;
};

void HostProgramImportTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_database = std::make_unique<HostDatabase>();
    QVERIFY2(m_database->open(file("host.sqlite")), qPrintable(m_database->errorText()));
    QVERIFY2(m_database->addPatient(Jane), qPrintable(m_database->errorText()));
}

void HostProgramImportTest::cleanup()
{
    m_database.reset();
    m_folder.reset();
}

void HostProgramImportTest::newDatabaseHasSchemaAndSettings()
{
    const QString guid = m_database->guid();
    QCOMPARE(guid.size(), 36);
    QVERIFY(addImport(*m_database, 1));
    QVERIFY2(!addImport(*m_database, 1), "the same MAC is stored twice for one patient");
    m_database->close();
    {
        OtherProgram other(file("host.sqlite"));
        QCOMPARE(other.value("PRAGMA user_version").toInt(), HostDatabase::SchemaVersion);
        QCOMPARE(other.value("SELECT value FROM meta WHERE key = 'guid'").toString(), guid);
        QCOMPARE(other.value("SELECT count(*) FROM import_files").toInt(), 1);
        QCOMPARE(other.value("PRAGMA integrity_check").toString(), QStringLiteral("ok"));
    }
    QVERIFY(m_database->open(file("host.sqlite")));
    QCOMPARE(m_database->guid(), guid);
    // With foreign keys off the import would be stored for nobody, and the files of removed imports would stay.
    ImportFacts stray = factsOf(2);
    stray.puid = QStringLiteral("P-9");
    QVERIFY(!m_database->addImport(stray, "s"));
    QVERIFY(m_database->removePatient(Jane.puid));
    m_database->close();
    OtherProgram other(file("host.sqlite"));
    QCOMPARE(other.value("SELECT count(*) FROM import_files").toInt(), 0);
}

void HostProgramImportTest::patientsKeepTheirTexts()
{
    const PatientRecord odd{QStringLiteral("a.B_9-"), {QStringLiteral("O'Brien; --"), QStringLiteral("\u00c5sa")}};
    QVERIFY(m_database->addPatient(odd));
    QCOMPARE(m_database->findPatient(odd.puid)->ids, (odd.ids + QStringList{QString(), QString()}));
    QVERIFY(!m_database->addPatient(odd));
    QVERIFY(m_database->errorText().contains(QLatin1String("already")));
    QCOMPARE(m_database->patients().size(), 2);
    for (const char* puid : {"", "a b", "a\"b", "\u00e4", "a\n"})
        QVERIFY2(!m_database->addPatient({QString::fromUtf8(puid), {}}), puid);
    QVERIFY(!m_database->changePatient({QStringLiteral("P-9"), {}}));
    QVERIFY(!m_database->removePatient(QStringLiteral("P-9")));
    QVERIFY(HostDatabase::isValidPuid(HostDatabase::newPuid()));
}

void HostProgramImportTest::unusableDatabaseIsTold_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("text file") << "text"
                               << "isn't a database";
    QTest::newRow("of another program") << "foreign"
                                        << "of another program";
    QTest::newRow("newer schema") << "newer"
                                  << "schema version 2, which is newer";
    QTest::newRow("locked") << "locked"
                            << "locked by another program";
    QTest::newRow("cut off") << "cut"
                             << "damaged";
    QTest::newRow("folder") << "folder"
                            << "is a folder";
    QTest::newRow("no such folder") << "orphan"
                                    << "can't be opened";
    QTest::newRow("read-only") << "readonly"
                               << "read-only";
}

void HostProgramImportTest::unusableDatabaseIsTold()
{
    QFETCH(QString, kind);
    QFETCH(QString, sentence);
    m_database->close();
    QString path = file("host.sqlite");
    std::unique_ptr<OtherProgram> other;
    if (kind == QLatin1String("text"))
        QVERIFY(writeFile(path, QByteArray(5000, 'a')));
    else if (kind == QLatin1String("cut"))
        QVERIFY(QFile::resize(path, qint64(3) * 4096));
    else if (kind == QLatin1String("folder"))
        path = m_folder->path();
    else if (kind == QLatin1String("orphan"))
        path = file("none/host.sqlite");
    else if (kind == QLatin1String("foreign"))
        path = file("foreign.sqlite");
    if (kind == QLatin1String("foreign"))
        QVERIFY(OtherProgram(path).run("CREATE TABLE patients (name TEXT)"));
    else if (kind == QLatin1String("newer"))
        QVERIFY(OtherProgram(path).run("PRAGMA user_version = 2"));
    else if (kind == QLatin1String("locked"))
        QVERIFY((other = std::make_unique<OtherProgram>(path))->run("BEGIN EXCLUSIVE"));
#ifdef Q_OS_UNIX
    const bool isRoot = geteuid() == 0; // whom no permission stops
    if (kind == QLatin1String("readonly")) {
        const QFile::Permissions readable = QFile::ReadUser | QFile::ReadGroup | QFile::ReadOther;
        QVERIFY(QFile::setPermissions(m_folder->path(), readable | QFile::ExeUser | QFile::ExeGroup | QFile::ExeOther));
        QVERIFY(QFile::setPermissions(path, readable));
        QVERIFY(!isRoot || seteuid(65534) == 0);
    }
#endif
    const QByteArray before = contentOf(path);
    const bool isOpen = m_database->open(path);
#ifdef Q_OS_UNIX
    QVERIFY(!isRoot || seteuid(0) == 0);
    QFile::setPermissions(m_folder->path(), QFile::ReadUser | QFile::WriteUser | QFile::ExeUser);
#endif
    QVERIFY(!isOpen);
    QVERIFY2(m_database->errorText().contains(sentence), qPrintable(m_database->errorText()));
    QVERIFY(m_database->errorText().contains(path));
    QCOMPARE(contentOf(path), before);
}

void HostProgramImportTest::lockedDatabaseLosesNothing()
{
    OtherProgram other(file("host.sqlite"));
    QVERIFY(other.run("BEGIN EXCLUSIVE"));
    QVERIFY(!addImport(*m_database, 1));
    QVERIFY2(m_database->errorText().contains(QLatin1String("locked")), qPrintable(m_database->errorText()));
    QVERIFY(other.run("COMMIT"));
    QVERIFY2(addImport(*m_database, 1), qPrintable(m_database->errorText()));
    QCOMPARE(m_database->imports(Jane.puid).size(), 1);
}

void HostProgramImportTest::killInMidImportLeavesAllOrNothing()
{
    m_database->close();
    int told = 0;
    int killedInMid = 0;
    qint64 lastChecked = 0;
    for (int round = 0; round < 25; ++round) {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--import"), file("host.sqlite")});
        QVERIFY(child.waitForReadyRead(20000));
        // Another moment of an import each time.
        QThread::usleep(static_cast<unsigned long>(round) * 2000);
        child.kill();
        QVERIFY(child.waitForFinished());
        told += child.readAllStandardOutput().count('\n');
        // The journal is there from the first write of a transaction to its end.
        killedInMid += QFile::exists(file("host.sqlite-journal")) ? 1 : 0;

        QVERIFY2(m_database->open(file("host.sqlite")), qPrintable(m_database->errorText()));
        const QVector<ImportFacts> imports = m_database->imports(Jane.puid);
        QVERIFY2(imports.size() >= told, "an import that was told as stored is gone");
        for (const ImportFacts& facts : imports) {
            if (facts.id <= lastChecked)
                break;
            const auto bytes = m_database->importedFile(facts.id);
            QVERIFY2(bytes && *bytes == exchangeFile(facts.mac.toInt()), "half an import");
        }
        lastChecked = imports.first().id;
        told = imports.size(); // the last one can be stored without having been told
        m_database->close();
    }
    QVERIFY2(killedInMid > 0, "no kill came in the middle of a transaction");
}

void HostProgramImportTest::macIsTheStandardOne_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("short key") << QByteArray("Jefe") << QByteArray("what do ya want for nothing?");
    QTest::newRow("no message") << QByteArray("key") << QByteArray();
    for (const int length : {63, 64, 65, 131})
        QTest::newRow(qPrintable(QString::number(length))) << QByteArray(length, '\xaa') << QByteArray(1000, '\x01');
}

void HostProgramImportTest::macIsTheStandardOne()
{
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, message);
    QCOMPARE(hmacSha256(key, message),
             QMessageAuthenticationCode::hash(message, key, QCryptographicHash::Sha256).toHex());
    QVERIFY(!equalInConstantTime(hmacSha256(key, message), hmacSha256(key, message).left(63)));
}

void HostProgramImportTest::importIsCheckedAndStored_data()
{
    QTest::addColumn<QString>("puid");
    QTest::addColumn<QString>("fileKind");
    QTest::addColumn<QString>("macKind");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("good") << "P-1"
                          << "file"
                          << "right" << int(ImportOutcome::Stored) << "imported: 9 bytes";
    QTest::newRow("rewritten meanwhile") << "P-1"
                                         << "file"
                                         << "rewriting" << int(ImportOutcome::Stored) << "9 bytes";
    QTest::newRow("first letter") << "P-1"
                                  << "file"
                                  << "first" << int(ImportOutcome::Refused) << "MAC doesn't match";
    QTest::newRow("last letter") << "P-1"
                                 << "file"
                                 << "last" << int(ImportOutcome::Refused) << "MAC doesn't match";
    QTest::newRow("half a MAC") << "P-1"
                                << "file"
                                << "half" << int(ImportOutcome::Refused) << "MAC doesn't match";
    QTest::newRow("no MAC") << "P-1"
                            << "file"
                            << "none" << int(ImportOutcome::Refused) << "MAC doesn't match";
    QTest::newRow("unknown patient") << "P-2"
                                     << "file"
                                     << "right" << int(ImportOutcome::Refused) << "no patient 'P-2'";
    QTest::newRow("no patient") << ""
                                << "file"
                                << "right" << int(ImportOutcome::Refused) << "no patient ''";
    QTest::newRow("missing file") << "P-1"
                                  << "missing"
                                  << "empty" << int(ImportOutcome::Refused) << "can't be read";
    QTest::newRow("folder") << "P-1"
                            << "folder"
                            << "empty" << int(ImportOutcome::Refused) << "can't be read";
    QTest::newRow("empty file") << "P-1"
                                << "empty"
                                << "empty" << int(ImportOutcome::Refused) << "is empty";
}

void HostProgramImportTest::importIsCheckedAndStored()
{
    QFETCH(QString, puid);
    QFETCH(QString, fileKind);
    QFETCH(QString, macKind);
    QFETCH(int, kind);
    QFETCH(QString, sentence);
    const QByteArray content = fileKind == QLatin1String("file") ? "<history>" : "";
    const QString path = fileKind == QLatin1String("folder") ? m_folder->path() : file("I0001.xml");
    if (fileKind == QLatin1String("file") || fileKind == QLatin1String("empty"))
        QVERIFY(writeFile(path, content));

    // The plug-in's own way to the MAC.
    const QByteArray key = "7c1ea4930d58e24b96f13a27b865cd02" + m_database->guid().toUtf8();
    QString mac =
        QString::fromLatin1(QMessageAuthenticationCode::hash(content, key, QCryptographicHash::Sha256).toHex());
    const auto otherLetter = [](QChar letter) {
        return QLatin1Char(letter == QLatin1Char('0') ? '1' : '0');
    };
    if (macKind == QLatin1String("first"))
        mac[0] = otherLetter(mac.at(0));
    else if (macKind == QLatin1String("last"))
        mac[63] = otherLetter(mac.at(63));
    else if (macKind == QLatin1String("half"))
        mac.truncate(32);
    else if (macKind == QLatin1String("none"))
        mac.clear();
    const auto answer = [&] {
        if (macKind == QLatin1String("rewriting"))
            writeFile(path, "other content");
        return mac;
    };

    PatientEvents events;
    HostLog log;
    HostDeviceAdmin deviceAdmin;
    deviceAdmin.setDrivePath(m_folder->path());
    deviceAdmin.setDeviceHold(true);
    ImportHandler handler(*m_database, events, log, deviceAdmin);
    int failures = 0;
    int successes = 0;
    connect(&events, &IEventPublisher::commandFailed, this, [&failures] { ++failures; });
    connect(&events, &IEventPublisher::commandSucceeded, this, [&successes] { ++successes; });
    ImportOutcome outcome;
    connect(&handler, &ImportHandler::finished, this, [&](const ImportOutcome& told) { outcome = told; });
    const auto execute = [&] {
        auto* command = new FixtureImport(puid, path, answer); // the handler takes it over
        bool isFreed = false;
        command->m_isFreed = &isFreed;
        const bool isStored = handler.execute(command);
        return isFreed && isStored == (outcome.kind != ImportOutcome::Refused);
    };

    QVERIFY(execute());
    QCOMPARE(int(outcome.kind), kind);
    QVERIFY2(outcome.sentence.contains(sentence), qPrintable(outcome.sentence));
    QVERIFY(log.contains(sentence));
    const bool isStored = outcome.kind == ImportOutcome::Stored;
    QCOMPARE(failures, isStored ? 0 : 1);
    QCOMPARE(successes, isStored ? 1 : 0);
    QVector<ImportFacts> imports = m_database->imports(Jane.puid);
    QCOMPARE(imports.size(), isStored ? 1 : 0);
    if (!isStored)
        return;
    QCOMPARE(*m_database->importedFile(imports.first().id), content);
    QCOMPARE(imports.first().fileName, QStringLiteral("I0001.xml"));
    QCOMPARE(imports.first().fileSize, qint64(content.size()));
    QCOMPARE(imports.first().mac, mac);
    QCOMPARE(imports.first().deviceState, QStringLiteral("reader held"));
    QVERIFY(qAbs(imports.first().importedAt.secsTo(QDateTime::currentDateTimeUtc())) < 60);

    QVERIFY(writeFile(path, content));
    QVERIFY(execute());
    QCOMPARE(outcome.kind, ImportOutcome::Repeated);
    QVERIFY2(outcome.sentence.contains(QLatin1String("already")), qPrintable(outcome.sentence));
    QCOMPARE(m_database->imports(Jane.puid).size(), 1);
}

void HostProgramImportTest::otherCommandsAreRefused()
{
    PatientEvents events;
    HostLog log;
    const HostDeviceAdmin deviceAdmin;
    ImportHandler handler(*m_database, events, log, deviceAdmin);
    ICommand query(ICommand::QueryDiary);
    QVERIFY(!handler.execute(&query));
    QVERIFY(!handler.execute(nullptr));
    QVERIFY(log.contains(QStringLiteral("type 5")));
}

void HostProgramImportTest::eventsTellTheOpenDiary()
{
    PatientEvents events;
    QStringList seen;
    const auto note = [&seen](const char* kind) {
        return [&seen, kind] {
            seen.append(QLatin1String(kind));
        };
    };
    QSharedPointer<IDiarySessionOpenedEvt> kept;
    connect(&events, &IEventPublisher::diarySessionOpened, this, [&](const IDiarySessionOpenedEvtPtr& event) {
        kept = event;
        seen.append(QStringLiteral("opened ") + event->puid());
    });
    connect(&events, &IEventPublisher::patientChanged, this, [&](const IPatientChangedEvtPtr& event) {
        seen.append(QStringLiteral("changed ") + event->puid() + QLatin1Char(' ') + event->pid(0) + event->pid(9));
    });
    connect(&events, &IEventPublisher::diarySessionClosed, this, note("closed"));
    connect(&events, &IEventPublisher::patientDeleted, this, note("deleted"));
    events.closeDiary();
    events.openDiary(Jane);
    events.publishChanged({Jane.puid, {QStringLiteral("Roe")}});
    QCOMPARE(events.openPatient().ids.value(0), QStringLiteral("Roe"));
    QCOMPARE(kept->pids(), Jane.ids);
    events.openDiary({QStringLiteral("P-2"), {}});
    events.publishDeleted(Jane.puid);
    QVERIFY(events.isOpen());
    events.publishDeleted(QStringLiteral("P-2"));
    QVERIFY(!events.isOpen());
    QCOMPARE(seen,
             (QStringList{"opened P-1", "changed P-1 Roe", "closed", "opened P-2", "deleted", "closed", "deleted"}));
}

void HostProgramImportTest::readerComesAndGoes()
{
    HostDeviceAdmin deviceAdmin;
    const auto drive = [&](int type) {
        const std::unique_ptr<IDevice> device(deviceAdmin.acquireDevice(type, {}));
        return device ? device->drivePath() : QStringLiteral("none");
    };
    QCOMPARE(drive(1), QStringLiteral("none"));
    deviceAdmin.setDrivePath(file("drive"));
    QCOMPARE(drive(1), QStringLiteral("none"));
    QVERIFY(QDir().mkdir(file("drive")));
    QCOMPARE(drive(1), file("drive"));
    QCOMPARE(drive(2), QStringLiteral("none"));
    QVERIFY(deviceAdmin.setDeviceHold(true));
    QVERIFY(!deviceAdmin.setDeviceHold(true));
    QVERIFY(deviceAdmin.setDeviceHold(false));
}

void HostProgramImportTest::watchdogEndsAHangingProcess()
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--hang")});
    QVERIFY(child.waitForFinished(20000));
    QCOMPARE(child.exitCode(), 7);
    QVERIFY(child.readAllStandardError().contains("the child hangs"));
}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("--import"))
        return importForEver(arguments.value(2));
    if (arguments.value(1) == QLatin1String("--hang"))
        return hang();
    HostProgramImportTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_host_program_import.moc"

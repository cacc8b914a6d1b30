// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/HostDatabase.h"

#include <QCoreApplication>
#include <QDate>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>
#include <QVariant>

#include <utility>

namespace {

/// "MVHO": tells our databases from SQLite files of other programs.
constexpr int ApplicationId = 0x4d56484f;

constexpr const char* Schema[] = {
    "CREATE TABLE meta (key TEXT PRIMARY KEY, value TEXT NOT NULL) WITHOUT ROWID",
    "CREATE TABLE patients ("
    " puid TEXT PRIMARY KEY CHECK (length(puid) > 0),"
    " name1 TEXT NOT NULL, name2 TEXT NOT NULL, birthday TEXT NOT NULL, extension TEXT NOT NULL)",
    "CREATE TABLE imports ("
    " id INTEGER PRIMARY KEY AUTOINCREMENT,"
    " puid TEXT NOT NULL REFERENCES patients (puid) ON DELETE RESTRICT ON UPDATE RESTRICT,"
    " imported_at TEXT NOT NULL, file_name TEXT NOT NULL, file_size INTEGER NOT NULL CHECK (file_size >= 0),"
    " mac TEXT NOT NULL CHECK (length(mac) = 64), device_state TEXT NOT NULL,"
    " UNIQUE (puid, mac))",
    // The bytes stand apart, so that a list of imports doesn't read them.
    ("CREATE TABLE import_files ("
     " import_id INTEGER PRIMARY KEY REFERENCES imports (id) ON DELETE CASCADE, bytes BLOB NOT NULL)"),
};

/// What a result code of SQLite means to the user; the extended codes carry the plain one in their low byte.
QString meaningOf(const QSqlError& error)
{
    switch (error.nativeErrorCode().toInt() & 0xff) {
    case 5:
    case 6:
        return QStringLiteral("it is locked by another program");
    case 8:
        return QStringLiteral("the file or its folder is read-only");
    case 10:
        return QStringLiteral("the drive reports an error when reading or writing");
    case 11:
        return QStringLiteral("the file is damaged");
    case 13:
        return QStringLiteral("the drive is full");
    case 14:
        return QStringLiteral("the file can't be opened or made; check that its folder exists and can be written to");
    case 26:
        return QStringLiteral("the file isn't a database");
    default:
        return error.databaseText().isEmpty() ? error.text() : error.databaseText();
    }
}

PatientRecord patientOf(const QSqlQuery& query)
{
    return {
        query.value(0).toString(),
        {query.value(1).toString(), query.value(2).toString(), query.value(3).toString(), query.value(4).toString()}};
}

ImportFacts factsOf(const QSqlQuery& query)
{
    ImportFacts facts;
    facts.id = query.value(0).toLongLong();
    facts.puid = query.value(1).toString();
    facts.importedAt = QDateTime::fromString(query.value(2).toString(), Qt::ISODateWithMs);
    facts.fileName = query.value(3).toString();
    facts.fileSize = query.value(4).toLongLong();
    facts.mac = query.value(5).toString();
    facts.deviceState = query.value(6).toString();
    return facts;
}

const QString SelectPatients = QStringLiteral("SELECT puid, name1, name2, birthday, extension FROM patients ");
const QString SelectImports =
    QStringLiteral("SELECT id, puid, imported_at, file_name, file_size, mac, device_state FROM imports ");

/// A null text would be stored as NULL.
QString notNull(const QString& text)
{
    return text.isNull() ? QStringLiteral("") : text;
}

} // namespace

HostDatabase::HostDatabase()
    : m_connectionName(QStringLiteral("host-") + QUuid::createUuid().toString(QUuid::WithoutBraces))
{}

HostDatabase::~HostDatabase()
{
    close();
}

bool HostDatabase::open(const QString& path)
{
    close();
    m_errorText.clear();
    m_path = QFileInfo(path).absoluteFilePath();
    ++m_openCount;
    if (QFileInfo(m_path).isDir())
        return fail(QStringLiteral("it is a folder, not a database file"));

    m_connection = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    if (!m_connection.isValid())
        return fail(QStringLiteral("Qt's SQLite driver isn't installed"));
    m_connection.setDatabaseName(m_path);
    m_connection.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=1000"));
    if (!m_connection.open())
        return fail(m_connection.lastError());
    if (!checkAndPrepare()) {
        const QString sentence = std::exchange(m_errorText, QString());
        close();
        m_errorText = sentence;
        return false;
    }
    return true;
}

void HostDatabase::close()
{
    if (m_connection.isValid()) {
        m_connection.close();
        m_connection = QSqlDatabase(); // Qt warns of a connection that is removed while something still holds it
        QSqlDatabase::removeDatabase(m_connectionName);
    }
    m_path.clear();
    m_guid.clear();
}

bool HostDatabase::checkAndPrepare()
{
    // A rollback journal rather than a write-ahead log: it also holds on a clinic's network drive. With EXTRA, which is
    // FULL with the folder synced too, what was told as imported is still there after a power failure.
    for (const char* setting :
         {"PRAGMA foreign_keys = ON", "PRAGMA journal_mode = DELETE", "PRAGMA synchronous = EXTRA"})
        if (!execute(QLatin1String(setting)))
            return false;

    const int applicationId = pragma(QStringLiteral("application_id")).toInt();
    const int version = pragma(QStringLiteral("user_version")).toInt();
    const bool isEmpty = pragma(QStringLiteral("schema_version")).toInt() == 0;
    if (!m_errorText.isEmpty())
        return false;
    if (!isEmpty && applicationId != ApplicationId)
        return fail(QStringLiteral("it is a database of another program"));
    if (version > SchemaVersion) {
        return fail(QStringLiteral("it has schema version %1, which is newer than version %2 of this program")
                        .arg(version)
                        .arg(SchemaVersion));
    }
    if (isEmpty && !createSchema())
        return false;

    // A write at each opening finds a file that can't be written to now, and not when a read-out is to be stored.
    QSqlQuery opened(m_connection);
    opened.prepare(QStringLiteral("INSERT INTO meta (key, value) VALUES ('opened', ?)"
                                  " ON CONFLICT (key) DO UPDATE SET value = excluded.value"));
    opened.addBindValue(QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs));
    if (!inTransaction([&] { return execute(opened); }))
        return false;

    QSqlQuery guid(m_connection);
    guid.prepare(QStringLiteral("SELECT value FROM meta WHERE key = 'guid'"));
    if (!execute(guid))
        return false;
    if (!guid.next() || guid.value(0).toString().isEmpty())
        return fail(QStringLiteral("it holds no GUID"));
    m_guid = guid.value(0).toString();
    return true;
}

bool HostDatabase::createSchema()
{
    return inTransaction([this] {
        for (const char* statement : Schema)
            if (!execute(QLatin1String(statement)))
                return false;
        QSqlQuery guid(m_connection);
        guid.prepare(QStringLiteral("INSERT INTO meta (key, value) VALUES ('guid', ?)"));
        guid.addBindValue(QUuid::createUuid().toString(QUuid::WithoutBraces));
        return execute(guid) && execute(QStringLiteral("PRAGMA application_id = %1").arg(ApplicationId)) &&
               execute(QStringLiteral("PRAGMA user_version = %1").arg(SchemaVersion));
    });
}

template <class Change>
bool HostDatabase::inTransaction(Change change)
{
    m_errorText.clear();
    // IMMEDIATE, since a transaction that begins by reading can be refused the right to write half-way.
    if (!execute(QStringLiteral("BEGIN IMMEDIATE")))
        return false;
    if (change() && execute(QStringLiteral("COMMIT")))
        return true;
    QSqlQuery(m_connection).exec(QStringLiteral("ROLLBACK")); // its own failure would hide the one that led here
    return false;
}

bool HostDatabase::execute(const QString& statement)
{
    QSqlQuery query(m_connection);
    return query.exec(statement) || fail(query.lastError());
}

bool HostDatabase::execute(QSqlQuery& query)
{
    return query.exec() || fail(query.lastError());
}

QVariant HostDatabase::pragma(const QString& name)
{
    QSqlQuery query(m_connection);
    if (!query.exec(QStringLiteral("PRAGMA ") + name)) {
        fail(query.lastError());
        return {};
    }
    return query.next() ? query.value(0) : QVariant();
}

bool HostDatabase::fail(const QSqlError& error)
{
    return fail(meaningOf(error));
}

bool HostDatabase::fail(const QString& sentence)
{
    m_errorText = QStringLiteral("database '%1': %2").arg(m_path, sentence);
    return false;
}

QString HostDatabase::revision()
{
    m_errorText.clear();
    // Both numbers belong to a connection: other connections' commits, and rows that this one has changed.
    QSqlQuery query(m_connection);
    query.prepare(QStringLiteral("SELECT data_version, total_changes() FROM pragma_data_version"));
    if (!execute(query) || !query.next())
        return {};
    return QStringLiteral("%1 %2 %3")
        .arg(m_openCount)
        .arg(query.value(0).toLongLong())
        .arg(query.value(1).toLongLong());
}

QVector<PatientRecord> HostDatabase::patients()
{
    m_errorText.clear();
    QSqlQuery query(m_connection);
    query.prepare(SelectPatients + QStringLiteral("ORDER BY name1 COLLATE NOCASE, name2 COLLATE NOCASE, puid"));
    QVector<PatientRecord> result;
    if (!execute(query))
        return result;
    while (query.next())
        result.append(patientOf(query));
    return result;
}

std::optional<PatientRecord> HostDatabase::findPatient(const QString& puid)
{
    m_errorText.clear();
    QSqlQuery query(m_connection);
    query.prepare(SelectPatients + QStringLiteral("WHERE puid = ?"));
    query.addBindValue(puid);
    if (!execute(query) || !query.next())
        return std::nullopt;
    return patientOf(query);
}

bool HostDatabase::addPatient(const PatientRecord& patient)
{
    if (findPatient(patient.puid))
        return fail(QStringLiteral("there is a patient '%1' already").arg(patient.puid));
    return changeOnePatient(QStringLiteral("INSERT INTO patients (name1, name2, birthday, extension, puid)"
                                           " VALUES (?, ?, ?, ?, ?)"),
                            patient);
}

bool HostDatabase::changePatient(const PatientRecord& patient)
{
    return changeOnePatient(QStringLiteral("UPDATE patients SET name1 = ?, name2 = ?, birthday = ?, extension = ?"
                                           " WHERE puid = ?"),
                            patient);
}

bool HostDatabase::changeOnePatient(const QString& statement, const PatientRecord& patient)
{
    const QString wrong = whatIsWrongWith(patient);
    if (!wrong.isEmpty())
        return fail(wrong);
    QSqlQuery query(m_connection);
    query.prepare(statement);
    for (int i = 0; i < 4; ++i)
        query.addBindValue(notNull(patient.ids.value(i)));
    query.addBindValue(patient.puid);
    return inTransaction([&] {
        return execute(query) &&
               (query.numRowsAffected() == 1 || fail(QStringLiteral("there is no patient '%1'").arg(patient.puid)));
    });
}

bool HostDatabase::removePatient(const QString& puid)
{
    QSqlQuery imports(m_connection);
    imports.prepare(QStringLiteral("DELETE FROM imports WHERE puid = ?"));
    imports.addBindValue(puid);
    QSqlQuery patient(m_connection);
    patient.prepare(QStringLiteral("DELETE FROM patients WHERE puid = ?"));
    patient.addBindValue(puid);
    return inTransaction([&] {
        return execute(imports) && execute(patient) &&
               (patient.numRowsAffected() == 1 || fail(QStringLiteral("there is no patient '%1'").arg(puid)));
    });
}

bool HostDatabase::isValidPuid(const QString& puid)
{
    static const QRegularExpression form(QStringLiteral("\\A[A-Za-z0-9._-]{1,64}\\z"));
    return form.match(puid).hasMatch();
}

QString HostDatabase::whatIsWrongWith(const PatientRecord& patient)
{
    if (!isValidPuid(patient.puid))
        return QStringLiteral("'%1' can't be a patient's key; letters, digits, '-', '_' and '.' can").arg(patient.puid);
    const QString birthday = patient.ids.value(2);
    if (!birthday.isEmpty() && !QDate::fromString(birthday, QStringLiteral("yyyy-MM-dd")).isValid())
        return QStringLiteral("'%1' isn't a birthday; write yyyy-MM-dd").arg(birthday);
    return {};
}

QString HostDatabase::newPuid()
{
    return QStringLiteral("P-%1").arg(QRandomGenerator::system()->generate(), 8, 16, QLatin1Char('0')).toUpper();
}

QVector<ImportFacts> HostDatabase::imports(const QString& puid)
{
    m_errorText.clear();
    QSqlQuery query(m_connection);
    query.prepare(SelectImports + QStringLiteral("WHERE puid = ? ORDER BY id DESC"));
    query.addBindValue(puid);
    QVector<ImportFacts> result;
    if (!execute(query))
        return result;
    while (query.next())
        result.append(factsOf(query));
    return result;
}

std::optional<ImportFacts> HostDatabase::findImport(const QString& puid, const QString& mac)
{
    m_errorText.clear();
    QSqlQuery query(m_connection);
    query.prepare(SelectImports + QStringLiteral("WHERE puid = ? AND mac = ?"));
    query.addBindValue(puid);
    query.addBindValue(mac);
    if (!execute(query) || !query.next())
        return std::nullopt;
    return factsOf(query);
}

bool HostDatabase::addImport(ImportFacts& facts, const QByteArray& bytes)
{
    qint64 id = 0;
    const bool stored = inTransaction([&] {
        QSqlQuery import(m_connection);
        import.prepare(QStringLiteral("INSERT INTO imports (puid, imported_at, file_name, file_size, mac, device_state)"
                                      " VALUES (?, ?, ?, ?, ?, ?)"));
        import.addBindValue(facts.puid);
        import.addBindValue(facts.importedAt.toUTC().toString(Qt::ISODateWithMs));
        import.addBindValue(notNull(facts.fileName));
        import.addBindValue(facts.fileSize);
        import.addBindValue(facts.mac);
        import.addBindValue(notNull(facts.deviceState));
        if (!execute(import))
            return false;
        id = import.lastInsertId().toLongLong();
        QSqlQuery file(m_connection);
        file.prepare(QStringLiteral("INSERT INTO import_files (import_id, bytes) VALUES (?, ?)"));
        file.addBindValue(id);
        file.addBindValue(bytes);
        return execute(file);
    });
    if (stored)
        facts.id = id;
    return stored;
}

std::optional<QByteArray> HostDatabase::importedFile(qint64 id)
{
    m_errorText.clear();
    QSqlQuery query(m_connection);
    query.prepare(QStringLiteral("SELECT bytes FROM import_files WHERE import_id = ?"));
    query.addBindValue(id);
    if (!execute(query) || !query.next())
        return std::nullopt;
    return query.value(0).toByteArray();
}

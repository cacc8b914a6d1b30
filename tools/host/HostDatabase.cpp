// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "tools/host/HostDatabase.h"

#include <QCoreApplication>
#include <QDate>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSqlError>
#include <QUuid>

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

/// "MVHO": distinguishes our databases from SQLite files of other programs.
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
    // The bytes have their own table, so that listing the imports doesn't read them.
    ("CREATE TABLE import_files ("
     " import_id INTEGER PRIMARY KEY REFERENCES imports (id) ON DELETE CASCADE, bytes BLOB NOT NULL)"),
};

/// Describes a result code of SQLite for users. The low byte of an extended code is the primary code.
QString meaningOf(const QSqlError& error)
{
    switch (error.nativeErrorCode().toInt() & 0xff) {
    case 5:
    case 6:
        return "it is locked by another program";
    case 8:
        return "the file or its folder is read-only";
    case 10:
        return "the drive reports an error when reading or writing";
    case 11:
        return "the file is damaged";
    case 13:
        return "the drive is full";
    case 14:
        return "the file can't be opened or created; check that its folder exists and can be written to";
    case 26:
        return "the file isn't a database";
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

const QString SelectPatients = "SELECT puid, name1, name2, birthday, extension FROM patients ";
const QString SelectImports = "SELECT id, puid, imported_at, file_name, file_size, mac, device_state FROM imports ";

template <class Record>
std::optional<Record> firstOf(const QVector<Record>& records)
{
    return records.isEmpty() ? std::nullopt : std::make_optional(records.first());
}

/// A null text would be stored as NULL.
QString notNull(const QString& text)
{
    return text.isNull() ? "" : text;
}

} // namespace

HostDatabase::HostDatabase()
    : m_connectionName("host-" + QUuid::createUuid().toString(QUuid::WithoutBraces))
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
        return fail("it is a folder, not a database file");

    m_connection = QSqlDatabase::addDatabase("QSQLITE", m_connectionName);
    if (!m_connection.isValid())
        return fail("Qt's SQLite driver isn't installed");
    m_connection.setDatabaseName(m_path);
    m_connection.setConnectOptions("QSQLITE_BUSY_TIMEOUT=1000");
    if (!m_connection.open())
        return fail(meaningOf(m_connection.lastError()));
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
    // A rollback journal, as a write-ahead log doesn't work on network drives. EXTRA also syncs the folder, so that a
    // reported import survives a power failure.
    for (const char* setting :
         {"PRAGMA foreign_keys = ON", "PRAGMA journal_mode = DELETE", "PRAGMA synchronous = EXTRA"})
        if (!query(setting))
            return false;

    const int applicationId = pragma("application_id").toInt();
    const int version = pragma("user_version").toInt();
    const bool isEmpty = pragma("schema_version").toInt() == 0;
    if (!m_errorText.isEmpty())
        return false;
    if (!isEmpty && applicationId != ApplicationId)
        return fail("it is a database of another program");
    if (version > SchemaVersion) {
        return fail(QString("it has schema version %1, which is newer than version %2 of this program")
                        .arg(version)
                        .arg(SchemaVersion));
    }
    if (isEmpty && !createSchema())
        return false;

    // Writes at each opening, to detect a file that can't be written to before a read-out must be stored.
    const bool isWritten = inTransaction([this] {
        return query("INSERT INTO meta (key, value) VALUES ('opened', ?)"
                     " ON CONFLICT (key) DO UPDATE SET value = excluded.value",
                     {QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs)})
            .has_value();
    });
    if (!isWritten)
        return false;
    auto guid = query("SELECT value FROM meta WHERE key = 'guid'");
    if (!guid)
        return false;
    if (!guid->next() || guid->value(0).toString().isEmpty())
        return fail("it holds no GUID");
    m_guid = guid->value(0).toString();
    return true;
}

bool HostDatabase::createSchema()
{
    return inTransaction([this] {
        return std::all_of(std::begin(Schema), std::end(Schema),
                           [this](const char* statement) { return query(statement); }) &&
               query("INSERT INTO meta (key, value) VALUES ('guid', ?)",
                     {QUuid::createUuid().toString(QUuid::WithoutBraces)}) &&
               query(QString("PRAGMA application_id = %1").arg(ApplicationId)) &&
               query(QString("PRAGMA user_version = %1").arg(SchemaVersion));
    });
}

template <class Change>
bool HostDatabase::inTransaction(Change change)
{
    m_errorText.clear();
    // IMMEDIATE, as a transaction that starts with reading can fail to get the write lock later.
    if (!query("BEGIN IMMEDIATE"))
        return false;
    if (change() && query("COMMIT"))
        return true;
    QSqlQuery(m_connection).exec("ROLLBACK"); // ignores its own failure, to keep the original error
    return false;
}

std::optional<QSqlQuery> HostDatabase::query(const QString& statement, const QVariantList& values)
{
    QSqlQuery query(m_connection);
    if (query.prepare(statement)) {
        for (const QVariant& value : values)
            query.addBindValue(value);
        if (query.exec())
            return query;
    }
    fail(meaningOf(query.lastError()));
    return std::nullopt;
}

template <class Record>
QVector<Record> HostDatabase::select(const QString& statement, const QVariantList& values,
                                     Record (*recordOf)(const QSqlQuery&))
{
    m_errorText.clear();
    QVector<Record> records;
    for (auto found = query(statement, values); found && found->next();)
        records.append(recordOf(*found));
    return records;
}

QVariant HostDatabase::pragma(const QString& name)
{
    auto found = query("PRAGMA " + name);
    return found && found->next() ? found->value(0) : QVariant();
}

bool HostDatabase::fail(const QString& sentence)
{
    m_errorText = QString("database '%1': %2").arg(m_path, sentence);
    return false;
}

QString HostDatabase::revision()
{
    // data_version counts the commits of other connections, total_changes() the rows changed by this one.
    const auto numbers = select<QString>("SELECT data_version || ' ' || total_changes() FROM pragma_data_version", {},
                                         [](const QSqlQuery& row) { return row.value(0).toString(); });
    return numbers.isEmpty() ? QString() : QString("%1 %2").arg(m_openCount).arg(numbers.first());
}

QVector<PatientRecord> HostDatabase::patients()
{
    return select(SelectPatients + "ORDER BY name1 COLLATE NOCASE, name2 COLLATE NOCASE, puid", {}, patientOf);
}

std::optional<PatientRecord> HostDatabase::findPatient(const QString& puid)
{
    return firstOf(select(SelectPatients + "WHERE puid = ?", {puid}, patientOf));
}

bool HostDatabase::addPatient(const PatientRecord& patient)
{
    if (findPatient(patient.puid))
        return fail(QString("there is a patient '%1' already").arg(patient.puid));
    return changeOnePatient("INSERT INTO patients (name1, name2, birthday, extension, puid) VALUES (?, ?, ?, ?, ?)",
                            patient);
}

bool HostDatabase::changePatient(const PatientRecord& patient)
{
    return changeOnePatient("UPDATE patients SET name1 = ?, name2 = ?, birthday = ?, extension = ? WHERE puid = ?",
                            patient);
}

bool HostDatabase::changeOnePatient(const QString& statement, const PatientRecord& patient)
{
    const QString wrong = whatIsWrongWith(patient);
    if (!wrong.isEmpty())
        return fail(wrong);
    QVariantList values;
    for (int i = 0; i < 4; ++i)
        values.append(notNull(patient.ids.value(i)));
    values.append(patient.puid);
    return inTransaction([&] { return changesOne(statement, values, patient.puid); });
}

bool HostDatabase::changesOne(const QString& statement, const QVariantList& values, const QString& puid)
{
    const auto changed = query(statement, values);
    return changed && (changed->numRowsAffected() == 1 || fail(QString("there is no patient '%1'").arg(puid)));
}

bool HostDatabase::removePatient(const QString& puid)
{
    return inTransaction([&] {
        return query("DELETE FROM imports WHERE puid = ?", {puid}) &&
               changesOne("DELETE FROM patients WHERE puid = ?", {puid}, puid);
    });
}

bool HostDatabase::isValidPuid(const QString& puid)
{
    static const QRegularExpression form("\\A[A-Za-z0-9._-]{1,64}\\z");
    return form.match(puid).hasMatch();
}

QString HostDatabase::whatIsWrongWith(const PatientRecord& patient)
{
    if (!isValidPuid(patient.puid))
        return QString("'%1' can't be a patient's key; letters, digits, '-', '_' and '.' can").arg(patient.puid);
    const QString birthday = patient.ids.value(2);
    const QDate date = QDate::fromString(birthday, "yyyy-MM-dd");
    if (!birthday.isEmpty() && (!date.isValid() || date > QDate::currentDate()))
        return QString("'%1' isn't a birthday; write a past day as yyyy-MM-dd").arg(birthday);
    return {};
}

QString HostDatabase::newPuid()
{
    return QString("P-%1").arg(QRandomGenerator::system()->generate(), 8, 16, QChar('0')).toUpper();
}

QVector<ImportFacts> HostDatabase::imports(const QString& puid)
{
    return select(SelectImports + "WHERE puid = ? ORDER BY id DESC", {puid}, factsOf);
}

std::optional<ImportFacts> HostDatabase::findImport(const QString& puid, const QString& mac)
{
    return firstOf(select(SelectImports + "WHERE puid = ? AND mac = ?", {puid, mac}, factsOf));
}

bool HostDatabase::addImport(ImportFacts& facts, const QByteArray& bytes)
{
    qint64 id = 0;
    const bool isStored = inTransaction([&] {
        const auto import = query("INSERT INTO imports (puid, imported_at, file_name, file_size, mac, device_state)"
                                  " VALUES (?, ?, ?, ?, ?, ?)",
                                  {facts.puid, facts.importedAt.toUTC().toString(Qt::ISODateWithMs),
                                   notNull(facts.fileName), facts.fileSize, facts.mac, notNull(facts.deviceState)});
        if (!import)
            return false;
        id = import->lastInsertId().toLongLong();
        return query("INSERT INTO import_files (import_id, bytes) VALUES (?, ?)", {id, bytes}).has_value();
    });
    if (isStored)
        facts.id = id;
    return isStored;
}

std::optional<QByteArray> HostDatabase::importedFile(qint64 id)
{
    return firstOf(select<QByteArray>("SELECT bytes FROM import_files WHERE import_id = ?", {id},
                                      [](const QSqlQuery& row) { return row.value(0).toByteArray(); }));
}

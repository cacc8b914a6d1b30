// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "host/IDatabase.h"

#include <QByteArray>
#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>
#include <QVector>

#include <optional>

/// What the database holds of one import beside the file's bytes.
struct ImportFacts
{
    qint64 id = 0; ///< given by the database
    QString puid;
    QDateTime importedAt; ///< UTC
    QString fileName;     ///< without its folder
    qint64 fileSize = 0;  ///< bytes
    QString mac;          ///< 64 lower-case hexadecimal characters
    QString deviceState;  ///< how the reader was there at the time of the import
};

/// The host's patient database: one SQLite file with patients and the exchange files imported for them.
///
/// Every change is one transaction, written through to the drive before the operation returns, so that a process that
/// is killed leaves all of it or nothing. An operation that fails leaves the database as it was and its sentence in
/// errorText(); one that succeeds clears it. GUI thread only.
class HostDatabase final
{
public:
    static constexpr int SchemaVersion = 1;

    HostDatabase();
    ~HostDatabase();
    Q_DISABLE_COPY_MOVE(HostDatabase)

    /// Opens the database at @p path, or makes a new one where there is no file or an empty one. Refuses what isn't a
    /// patient database, has a newer schema, is locked or can't be written to. Another database is closed first.
    bool open(const QString& path);
    void close();

    /// Absolute path of the open database.
    QString path() const { return m_path; }
    /// The database's own identity, a UUID without braces, which is part of the key of the file MAC.
    QString guid() const { return m_guid; }
    /// One sentence on the last operation's failure; empty after a success.
    QString errorText() const { return m_errorText; }

    /// Returns a text that differs from any earlier one if the database may have changed since, by this or another
    /// program; empty if the database can't be read.
    QString revision();
    /// All patients in the order of their names. Their ids have four entries.
    QVector<PatientRecord> patients();
    std::optional<PatientRecord> findPatient(const QString& puid);
    /// Adds a patient. The puid goes unquoted into the reader's commands, so isValidPuid() must hold.
    bool addPatient(const PatientRecord& patient);
    bool changePatient(const PatientRecord& patient);
    /// Removes a patient with all imports.
    bool removePatient(const QString& puid);

    static bool isValidPuid(const QString& puid);
    /// Why the database would refuse that patient, whatever it holds; empty if it wouldn't.
    static QString whatIsWrongWith(const PatientRecord& patient);
    /// A new random key for a patient, such as "P-1A2B3C4D".
    static QString newPuid();

    /// The imports of a patient, the latest first.
    QVector<ImportFacts> imports(const QString& puid);
    std::optional<ImportFacts> findImport(const QString& puid, const QString& mac);
    /// Stores facts and bytes of one import, and gives `facts.id`. A patient holds a MAC at most once.
    bool addImport(ImportFacts& facts, const QByteArray& bytes);
    /// The bytes as they were imported; nothing for an unknown id.
    std::optional<QByteArray> importedFile(qint64 id);

private:
    bool checkAndPrepare();
    bool createSchema();
    /// Runs one statement, with a value for each "?" in it. Returns nothing and sets errorText() if that fails.
    std::optional<QSqlQuery> query(const QString& statement, const QVariantList& values = {});
    template <class Record>
    QVector<Record> select(const QString& statement, const QVariantList& values, Record (*recordOf)(const QSqlQuery&));
    QVariant pragma(const QString& name);
    bool fail(const QString& sentence);
    bool changeOnePatient(const QString& statement, const PatientRecord& patient);
    bool changesOne(const QString& statement, const QVariantList& values, const QString& puid);

    template <class Change>
    bool inTransaction(Change change);

    QSqlDatabase m_connection;
    QString m_connectionName;
    QString m_path;
    QString m_guid;
    QString m_errorText;
    int m_openCount = 0;
};

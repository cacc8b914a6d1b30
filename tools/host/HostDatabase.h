// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "hostapi/IDatabase.h"

#include <QByteArray>
#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>
#include <QVector>

#include <optional>

/// An import without the file's bytes.
struct ImportFacts
{
    qint64 id = 0; ///< assigned by the database
    QString puid;
    QDateTime importedAt; ///< UTC
    QString fileName;     ///< without its folder
    qint64 fileSize = 0;  ///< bytes
    QString mac;          ///< 64 lower-case hexadecimal characters
    QString deviceState;  ///< how the reader was connected during the import
};

/// The host's patient database: one SQLite file with patients and the exchange files imported for them.
///
/// Each change is one transaction, synced to the disk before the operation returns, so that a killed process leaves
/// either all of it or nothing. An operation that fails changes nothing and sets errorText(); one that succeeds clears
/// it. GUI thread only.
class HostDatabase final
{
public:
    static constexpr int SchemaVersion = 1;

    HostDatabase();
    ~HostDatabase();
    Q_DISABLE_COPY_MOVE(HostDatabase)

    /// Opens the database at @p path; creates it if the file is missing or empty. Fails if the file isn't a patient
    /// database, has a newer schema, is locked or can't be written to. Closes any other database first.
    bool open(const QString& path);
    void close();

    /// Returns the absolute path of the open database.
    QString path() const { return m_path; }
    /// Returns the database's identity, a UUID without braces, which is part of the key of the file MAC.
    QString guid() const { return m_guid; }
    /// Returns one sentence about the latest operation's failure, or an empty text after a success.
    QString errorText() const { return m_errorText; }

    /// Returns a text that changes whenever this or another program may have changed the database, or an empty text if
    /// the database can't be read.
    QString revision();
    /// Returns all patients in the order of their names. Their ids have four entries.
    QVector<PatientRecord> patients();
    std::optional<PatientRecord> findPatient(const QString& puid);
    /// Adds a patient. isValidPuid() must be true, as the reader's commands contain the puid without quotes.
    bool addPatient(const PatientRecord& patient);
    bool changePatient(const PatientRecord& patient);
    /// Removes a patient and all imports.
    bool removePatient(const QString& puid);

    static bool isValidPuid(const QString& puid);
    /// Returns why the patient's data is invalid, or an empty text.
    static QString whatIsWrongWith(const PatientRecord& patient);
    /// Returns a new random key for a patient, such as "P-1A2B3C4D".
    static QString newPuid();

    /// Returns the imports of a patient, the latest first.
    QVector<ImportFacts> imports(const QString& puid);
    std::optional<ImportFacts> findImport(const QString& puid, const QString& mac);
    /// Stores one import and sets `facts.id`. Each MAC is stored at most once for a patient.
    bool addImport(ImportFacts& facts, const QByteArray& bytes);
    /// Returns the imported bytes, or nothing for an unknown id.
    std::optional<QByteArray> importedFile(qint64 id);

private:
    bool checkAndPrepare();
    bool createSchema();
    /// Executes one statement with a value for each "?" in it. Returns nothing and sets errorText() if that fails.
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

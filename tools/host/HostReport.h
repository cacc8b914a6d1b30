// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

class HostDatabase;

/// The sources of a report.
struct ReportSources
{
    QStringList logs;                          ///< paths, the oldest first
    QString trafficFolder;                     ///< empty: no traffic is kept
    QVector<QPair<QString, QString>> versions; ///< of the programs and the system
    QVector<QPair<QString, QString>> settings; ///< of the program
    QStringList personal;                      ///< values that are always replaced
    QString unknown;                           ///< why some are unknown; empty: all are known
};

/// Returns the personal values in the database and the system, and the database's GUID. The database may be closed; on
/// a failure its errorText() is set. On the thread of the database only.
QStringList personalData(HostDatabase& database);

/// Writes an archive (zip) for troubleshooting: a list of its contents, log, versions, settings and the latest traffic
/// with the reader.
///
/// Personal data is replaced unless requested: names, ids, birthdays, serial numbers, addresses, paths, file MACs and
/// all words outside the programs' vocabulary. No report contains the database, its GUID, keys or large exchange files.
/// The archive is created atomically and never replaces a file. Any thread; takes some seconds with much data.
class HostReport final
{
public:
    explicit HostReport(ReportSources sources)
        : m_sources(std::move(sources))
    {}

    /// Returns false if the archive couldn't be written. Sets @p sentence to the result or the error.
    bool save(const QString& path, bool withPersonalData, QString* sentence);

private:
    using Member = QPair<QString, QByteArray>; // name and content

    QVector<Member> members(bool withPersonalData);
    QByteArray contents(const QVector<Member>& members, bool withPersonalData) const;

    const ReportSources m_sources;
    QStringList m_missing; // what couldn't be read
};

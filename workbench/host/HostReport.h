// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

class HostDatabase;

/// What a report is made of.
struct ReportSources
{
    QStringList logs;                          ///< paths, the oldest first
    QString trafficFolder;                     ///< empty: no traffic is kept
    QVector<QPair<QString, QString>> versions; ///< of programs and system
    QVector<QPair<QString, QString>> settings; ///< that the program runs with
    QStringList personal;                      ///< what is replaced, wherever it appears
    QString unknown;                           ///< why that isn't all; empty: it is
};

/// What the database and the system know as somebody's, the database's GUID too. On the thread of the database, which
/// may be closed. A failure is in its errorText().
QStringList personalData(HostDatabase& database);

/// Writes one archive (zip) for whoever is to find out what went wrong: a list of its contents, log, versions, settings
/// and the last traffic with the reader.
///
/// Personal data is replaced unless asked for: names, ids, birthdays, serial numbers, addresses, paths, file MACs, all
/// words that the programs don't write themselves. The database, its GUID, keys and the contents of large exchange
/// files are in no report. The archive is there as a whole or not at all, and never takes the place of a file. Any
/// thread: some seconds go by where much was kept.
class HostReport final
{
public:
    explicit HostReport(ReportSources sources)
        : m_sources(std::move(sources))
    {}

    /// False if it couldn't be written. @p sentence says in either case what was written where, or what was wrong.
    bool save(const QString& path, bool withPersonalData, QString* sentence);

private:
    using Member = QPair<QString, QByteArray>; // name and content

    QVector<Member> members(bool withPersonalData);
    QByteArray contents(const QVector<Member>& members, bool withPersonalData) const;

    const ReportSources m_sources;
    QStringList m_missing; // what couldn't be read
};

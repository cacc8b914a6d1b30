// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "tools/support/LogFile.h"

#include <QAbstractTableModel>
#include <QDateTime>
#include <QStringList>
#include <QTimer>
#include <QVector>

/// The host's log, as a table for the window and as lines in a file. A record is in the file at once; the table shows
/// new records in groups, a little later, and has a maximum size. GUI thread only.
class HostLog final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Level { Trace, Info, Warning, Error };
    enum Column { TimeColumn, LevelColumn, SourceColumn, MessageColumn, DetailsColumn, ColumnCount };
    static constexpr int LevelRole = Qt::UserRole;

    explicit HostLog(QObject* parent = nullptr);

    /// Also appends every record from now on to that file, one line each. Returns false if it can't be opened.
    bool openFile(const QString& path, QString* error, const LogLimits& limits = {});
    /// Returns the files of the log, the oldest first.
    QStringList files() const { return m_file.files(); }

    /// Adds a record. @p channel determines the level; details may be empty.
    void write(const QString& source, const QString& channel, const QString& message, const QStringList& details = {});

    /// Returns true if a record in the table, or waiting for it, contains that text in its message or details.
    bool contains(const QString& text) const;

    /// Returns the level: "Info" and "txt" are information, "Warning" a warning, "Error" and "err" an error, any other
    /// channel is trace.
    static Level levelOf(const QString& channel);
    static QString levelName(Level level);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

Q_SIGNALS:
    /// Emitted when the log file can't be written any more; the table still gets records.
    void fileFailed(const QString& sentence);

private:
    struct Record
    {
        QDateTime time;
        Level level;
        QString source;
        QString channel;
        QString message;
        QString details;
    };

    void showWaiting();

    QVector<Record> m_records;
    int m_rowCount = 0; ///< the records that the table shows; the others wait for the timer
    QTimer m_showTimer;
    LogFile m_file;
};

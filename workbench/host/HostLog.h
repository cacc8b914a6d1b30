// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/support/LogFile.h"

#include <QAbstractTableModel>
#include <QDateTime>
#include <QStringList>
#include <QTimer>
#include <QVector>

/// The host's log, as a table for the window and as lines in a file. The file holds every record, at once; the table
/// shows what has come together a little later, and lets the oldest go when it grows long. GUI thread only.
class HostLog final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Level { Trace, Info, Warning, Error };
    enum Column { TimeColumn, LevelColumn, SourceColumn, MessageColumn, DetailsColumn, ColumnCount };
    static constexpr int LevelRole = Qt::UserRole;

    explicit HostLog(QObject* parent = nullptr);

    /// Appends every record from now on to that file as well, one line each. False if it can't be opened.
    bool openFile(const QString& path, QString* error, const LogLimits& limits = {});
    /// Returns the files of the log, the oldest first.
    QStringList files() const { return m_file.files(); }

    /// One record. @p channel tells the level; details may be empty.
    void write(const QString& source, const QString& channel, const QString& message, const QStringList& details = {});

    /// True if a record in the table, or about to come to it, holds that text in its message or details.
    bool contains(const QString& text) const;

    /// "Info" and "txt" are information, "Warning" a warning, "Error" and "err" an error, all else the trace.
    static Level levelOf(const QString& channel);
    static QString levelName(Level level);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

Q_SIGNALS:
    /// The log file can't be written any more; records still come to the table.
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
    int m_rowCount = 0; ///< how many of them the table shows; the others wait for the timer
    QTimer m_showTimer;
    LogFile m_file;
};

// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTableModel>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QFile>
#include <QStringList>
#include <QTimer>
#include <QVector>

/// How long the log's file grows. A file that would grow larger is put aside as FILE.1, the one of that name as FILE.2
/// and so on; the oldest goes.
struct LogLimits
{
    qint64 bytes = 0; ///< of one file, unless one record alone is longer; 0: no limit
    int files = 2;    ///< with the one that is written, at least 2
    /// How long a file that couldn't be written rests before it is tried again, as a slow drive would hold up each
    /// record; in milliseconds.
    int restMs = 60000;
};

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
    ~HostLog() override;

    /// Appends every record from now on to that file as well, one line each. False if it can't be opened.
    bool openFile(const QString& path, QString* error, const LogLimits& limits = {});
    /// The files of the log, the oldest first.
    QStringList files() const;
    /// Those that there are of a log of up to @p most files, the oldest first.
    static QStringList filesAt(const QString& path, int most);

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
    /// The log file can't be written; records still come to the table. Once it can be again, a line there tells how
    /// many it lacks.
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
    static QByteArray lineOf(const Record& record);
    void writeToFile(const Record& record);
    bool takeFileUpAgain();
    void startNewFile();

    QVector<Record> m_records;
    int m_rowCount = 0; ///< how many of them the table shows; the others wait for the timer
    QTimer m_showTimer;
    QFile m_file;
    bool m_isWritten = false; ///< the file could be opened; if it fails later it is tried again
    LogLimits m_limits;
    QDeadlineTimer m_rest;
    int m_lacking = 0; ///< records that the file lacks since it failed
};

// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/reader/ReaderDrive.h"
#include "workbench/reader/Traffic.h"

#include <QElapsedTimer>
#include <QFileSystemWatcher>
#include <QHash>
#include <QSet>
#include <QTimer>

/// Sees what happens on a reader's drive, whoever serves it, without touching the drive: opens its files for reading
/// alone, writes nothing and claims nothing. Lives on any thread that has an event loop.
class TrafficWatcher final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrafficWatcher)

public:
    explicit TrafficWatcher(const QString& drivePath, QObject* parent = nullptr);

    /// Begins to look, and tells first what lies there by now. A command that lies there was given before, and isn't
    /// told.
    void start();
    /// Tells what has changed since the last look, and looks no more.
    void stop();
    QString drivePath() const { return m_drivePath; }

Q_SIGNALS:
    /// The content of one of the reader's files has changed, or the trigger file was written.
    void changed(const TrafficEntry& entry);

private:
    struct Seen
    {
        FileStamp stamp;
        QByteArray bytes; // of a small file
        bool isTold = false;
        qint64 toldMs = 0; // if it is told
    };

    void look();
    void lookAtTrigger();
    void lookAtFile(const QString& name);
    bool isLateAnswer(const QByteArray& status) const;
    void tellPending(bool isEnd);
    bool tell(const QString& name);
    void tell(const QString& file, const std::optional<QByteArray>& bytes);
    QString pathOf(const QString& name) const;

    const QString m_drivePath;
    QFileSystemWatcher m_watcher;
    QSet<QString> m_written; // the paths of files that were written since the last look
    QTimer m_timer;
    QElapsedTimer m_clock;
    FileStamp m_trigger;
    QByteArray m_lastWord; // of the command that was told last
    QHash<QString, Seen> m_seen;
};

// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "tools/traffic/ReaderNames.h"
#include "tools/traffic/Traffic.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileSystemWatcher>
#include <QHash>
#include <QTimer>

#include <limits>

/// Records the changes on a reader's drive, whichever program serves it. Opens files only for reading. An entry is the
/// new content of a file in MISC; the files that exist at the start come first, except an old command. Needs a thread
/// with an event loop.
class TrafficRecorder final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrafficRecorder)

public:
    explicit TrafficRecorder(const QString& drivePath, QObject* parent = nullptr);
    /// Stops the recording.
    ~TrafficRecorder() override;

    /// Sets the maximum size of the recording, and the size above which a content is replaced by filler; both in bytes.
    void setLimits(qint64 fileBytes, int contentBytes);
    /// Starts to record to @p fileName, which must not exist. Returns false with an error that names the file if that
    /// fails.
    bool start(const QString& fileName, QString* error);
    /// Records the changes since the last check and ends the recording. Returns false if failed() was emitted.
    bool stop();

Q_SIGNALS:
    /// Emitted when the recording can't be written any more.
    void failed(const QString& error);

private:
    struct Seen
    {
        FileStamp stamp;
        QByteArray bytes; // of a small file
        bool isRecorded = false;
        qint64 recordedMs = 0;
    };

    void check();
    void checkFile(const QString& name);
    void recordPending(bool withExchangeFiles);
    void record(const QString& name);
    void write(const QString& name, const std::optional<QByteArray>& bytes);
    QString pathOf(const QString& name) const;

    const QString m_drivePath;
    qint64 m_maxFileBytes = std::numeric_limits<qint64>::max();
    int m_maxContentBytes = std::numeric_limits<int>::max();
    QFile m_file;
    QFileSystemWatcher m_watcher;
    bool m_isCommandWritten = false; // since the last check
    QTimer m_timer;
    QElapsedTimer m_clock;
    QHash<QString, Seen> m_seen;
};

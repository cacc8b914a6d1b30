// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "tools/traffic/Traffic.h"

#include <QObject>
#include <QTimer>

class ReaderDrive;

/// Replays the reader's side of a recording: searches each command that the drive receives in the recording, after the
/// previous one, and repeats what the reader did, at the same pace.
class TrafficReplay final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrafficReplay)

public:
    /// The drive must be open and outlive this object; it is not owned. With @p instant every duration is 0.
    TrafficReplay(ReaderDrive& drive, const QVector<TrafficEntry>& entries, bool instant, QObject* parent = nullptr);

    /// Writes the files that the reader had before the first command, and starts to watch the drive.
    void start();

Q_SIGNALS:
    /// Emitted with one line about what happens.
    void logged(const QString& line);
    /// Emitted when the replay can't continue.
    void failed(const QString& error);

private:
    void onCommandWritten(const QByteArray& bytes);
    void waitForNext();
    void playNext();
    bool atAnswer() const;

    ReaderDrive& m_drive;
    const QVector<TrafficEntry> m_entries;
    const bool m_instant;
    QTimer m_timer;
    int m_next = 0;
};

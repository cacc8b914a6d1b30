// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/traffic/Traffic.h"

#include <QObject>
#include <QTimer>

class ReaderDrive;

/// Plays the reader's side of a recording: each command that the drive gets is looked up in the recording, from the
/// last one on, and answered with what the reader did there, at the same pace.
class TrafficReplay final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrafficReplay)

public:
    /// The drive is open already, not owned, and outlives this object. With @p instant nothing takes time.
    TrafficReplay(ReaderDrive& drive, const QVector<TrafficEntry>& entries, bool instant, QObject* parent = nullptr);

    /// Lays out what the reader had before the first command, and listens.
    void start();

Q_SIGNALS:
    /// One line of what happens, for people.
    void logged(const QString& line);
    /// The reader can't go on.
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

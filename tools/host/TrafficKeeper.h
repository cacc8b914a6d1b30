// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>
#include <QObject>
#include <QThread>

/// The limits of the traffic that is kept.
struct TrafficLimits
{
    qint64 fileBytes = 8388608;   ///< of one run; the rest isn't recorded
    qint64 totalBytes = 16777216; ///< of all files; the oldest are removed
    int contentBytes = 1048576;   ///< of a file on the drive; of a larger one only the size is kept
    int hours = 72;               ///< older files are removed
};

/// Keeps the latest traffic of the reader's drive in a folder, one recording for each run of the plug-in, so that a
/// failed run can be examined and replayed, also after a crash.
///
/// The drive is watched only during a run, read-only and on a separate thread: a drive that hangs blocks neither the
/// window nor the plug-in.
class TrafficKeeper final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrafficKeeper)

public:
    TrafficKeeper(const QString& folder, const TrafficLimits& limits, QObject* parent = nullptr);
    /// Ends the current recording.
    ~TrafficKeeper() override;

    /// Starts a recording and ends the previous one.
    void begin(const QString& drivePath);
    /// Records the latest changes.
    void end();

    /// Returns the names of the recordings in a folder, the oldest first.
    static QStringList recordingsIn(const QString& folder);

Q_SIGNALS:
    /// Emitted when the traffic of this run can't be recorded any more.
    void failed(const QString& error);

private:
    void makeRoom() const;

    const QDir m_folder;
    const TrafficLimits m_limits;
    QThread m_thread;
    QObject* m_worker; // lives on the thread, which deletes it at its end; the recorder is its child
};

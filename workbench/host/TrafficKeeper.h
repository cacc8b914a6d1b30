// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>
#include <QObject>
#include <QThread>

/// How much of the traffic is kept.
struct TrafficLimits
{
    qint64 fileBytes = 8388608;   ///< of one run; what follows isn't recorded
    qint64 totalBytes = 16777216; ///< the oldest files are removed
    int contentBytes = 1048576;   ///< of a larger file on the drive only the size is kept
    int hours = 72;               ///< older files are removed
};

/// Keeps the last traffic of the reader's drive in a folder, one recording for each run of the plug-in, so that a run
/// that failed can be examined and replayed, also after a crash.
///
/// The drive is watched only while a run holds it, for reading only, on a separate thread: a drive that hangs holds up
/// neither the window nor the plug-in.
class TrafficKeeper final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrafficKeeper)

public:
    TrafficKeeper(const QString& folder, const TrafficLimits& limits, QObject* parent = nullptr);
    /// Ends the current recording.
    ~TrafficKeeper() override;

    /// Begins a recording; the one before ends.
    void begin(const QString& drivePath);
    /// Records what has changed last.
    void end();

    /// Returns the names of the recordings in a folder, the oldest first.
    static QStringList recordingsIn(const QString& folder);

Q_SIGNALS:
    /// The traffic of this run can't be kept any more.
    void failed(const QString& error);

private:
    void makeRoom() const;

    const QDir m_folder;
    const TrafficLimits m_limits;
    QThread m_thread;
    QObject* m_worker; // lives on the thread, which deletes it at its end; the recorder is its child
};

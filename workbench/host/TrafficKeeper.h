// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QThread>

/// How much of the traffic is kept.
struct TrafficLimits
{
    qint64 fileBytes = 2097152;   ///< a run that is longer goes on in another file
    qint64 totalBytes = 16777216; ///< the oldest files go
    int contentBytes = 1048576;   ///< of a larger file on the drive only the size is kept
    int hours = 72;               ///< older files go
};

/// Keeps the last traffic of the reader's drive in a folder, one recording for each run of the plug-in, so that a run
/// that failed can be looked at and played again, also after a crash.
///
/// The drive is looked at only while a run holds it, for reading alone, on a thread of its own: a drive that hangs
/// holds up neither the window nor the plug-in. Each file begins with what lay on the drive then, and so plays by
/// itself.
class TrafficKeeper final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrafficKeeper)

public:
    TrafficKeeper(const QString& folder, const TrafficLimits& limits, QObject* parent = nullptr);
    /// Ends the recording that is at work.
    ~TrafficKeeper() override;

    /// Begins a recording; the one before ends.
    void begin(const QString& drivePath);
    /// Writes down what has changed last.
    void end();

    /// Names of the recordings in a folder, the oldest first.
    static QStringList recordingsIn(const QString& folder);

Q_SIGNALS:
    /// The traffic of this run can't be kept any more.
    void failed(const QString& sentence);

private:
    QThread m_thread;
    QObject* m_store; // of the thread; it goes with the thread's end
};

// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "readerlink/StatusRecord.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QThread>

#include <atomic>
#include <memory>

/// Reads the reader's status file, and polls it until a command has ended.
///
/// A polling begins with start() and ends with exactly one of finished() and timeout(). About every 100 ms, a tick on a
/// worker thread forces the drive to show its current state, reads the status file and compares. A status counts only
/// if it differs from the one that start() has read and belongs to the command that was submitted last. Limits use the
/// wall clock: setting the clock moves them.
///
/// Create, use and delete the object on the GUI thread. The signals are emitted on the worker thread; objects of the
/// GUI thread receive them queued. There are no locks: values cross between the threads by invokeQueued(), as atomics
/// or as arguments of signals.
class StatusFileParser final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(StatusFileParser)

    QThread m_thread; // declared first, so that it is destroyed last

public:
    enum State {
        Waiting = 0, ///< The status file hasn't shown the command as running.
        Started = 1, ///< The status file has shown the command as running.
        Ended = 2    ///< The status file has shown the command as ended.
    };

    /// Replaces the current parser, if any, by one for the folder "MISC" of that drive. The caller deletes it at the
    /// end of the run.
    static StatusFileParser* create(const QString& drivePath);
    /// Returns the current parser, or null.
    static StatusFileParser* instance();
    /// Ends the worker thread. Drops a pending tick without a signal. Completes a tick under way, whose signals may
    /// still be queued: destroy their receivers before control returns to the event loop.
    ~StatusFileParser() override;

    /// Starts a polling for the command that CommandFileWriter has just submitted. Reads the status once, on the
    /// calling thread; the rest happens on the worker thread. Must not be called during a polling.
    ///
    /// @param timeoutSec  limit of the whole polling, in seconds
    /// @param startingSec limit for the reader to start the command, in seconds; 0: @p timeoutSec
    /// @param delayMs     pause before the first tick, in milliseconds; 0: 500 ms
    void start(int timeoutSec, int startingSec, int delayMs);
    /// Requests the end of the polling: the next tick emits finished(true) with the status Canceled. A request
    /// outside a polling stays pending and cancels the next polling if none has run yet, or if the last one ended by a
    /// time-out or a cancel. In state Ended requests are ignored; a new polling keeps the state of the previous one
    /// until its first tick, so that a request before that tick may be lost.
    void cancel();

    /// Rewrites the trigger file, then reads the status file. Logs a failure and returns the default record, whose
    /// header is empty. Thread-safe.
    StatusRecord readStatus() const;
    /// Rewrites the trigger file, which forces the drive to show its current state. Returns false if the file can't be
    /// opened. Thread-safe.
    bool triggerFileSystemUpdate() const;

    /// The reader's working directory: the drive path followed by "/MISC".
    const QString m_path;
    /// A State, written by the worker thread. Keeps its value after a polling until the next one begins.
    std::atomic<int> m_state{Waiting};
    /// The latest record of a polling, for handlers of finished(). GUI thread only; updated before the signal that
    /// follows the record arrives.
    StatusRecord m_lastStatus;

Q_SIGNALS:
    /// Internal: passes the arguments of start() to the worker thread.
    void pollingRequested(int timeoutSec, int startingSec, int delayMs);
    /// Emitted when a status ends the polling. @p success is true if the status is new and belongs to the submitted
    /// command, or if the user has cancelled; m_lastStatus has the details. It is false if the status belongs to
    /// another command.
    void finished(bool success);
    /// Emitted after each tick that doesn't end the polling: 0 to 99, on a curve that is steep at first.
    void progress(int percentage);
    /// Emitted when an exceeded limit or a failed read ends the polling.
    void timeout();

private Q_SLOTS:
    void preparePolling(int timeoutSec, int startingSec, int delayMs);
    void continuePolling();

private:
    explicit StatusFileParser(const QString& drivePath);

    void beginPolling();
    bool updateStatus();
    void setLatest(const StatusRecord& record);
    bool isChanged() const;
    bool isAborted() const;

    const QString m_statusFile;
    const QString m_triggerFile;
    std::atomic<bool> m_cancelRequested{false};

    // Worker thread only.
    int m_startTimeoutMs = 0;
    int m_stopTimeoutMs = 0;
    qint64 m_startDeadline = 0; // deadlines and start time: milliseconds since the epoch
    qint64 m_stopDeadline = 0;
    qint64 m_startTime = 0;
    const int m_pollIntervalMs = 100;
    StatusRecord m_snapshot; ///< The status before the polling.
    StatusRecord m_latest;   ///< The worker thread's copy of m_lastStatus.

    QObject m_guiContext; ///< Lives on the GUI thread: target of the worker thread's queued calls.
    std::unique_ptr<QFileSystemWatcher> m_watcher{std::make_unique<QFileSystemWatcher>()};
};

// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "reader/StatusRecord.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QThread>

#include <atomic>
#include <memory>

/// Reads the reader's status file, and follows one command at a time to its end.
///
/// A polling run begins with start() and ends with exactly one of finished() and timeout(). In between, a worker thread
/// of its own makes a tick about every 100 ms: it forces the drive to show its newest state, reads the status file, and
/// compares. A status counts only if it differs from the one that start() saw and speaks of the command that was
/// submitted last. The time base is the wall clock: setting the clock moves the limits.
///
/// The object is made, used and deleted on the GUI thread; its signals come from the worker thread and reach objects of
/// the GUI thread queued. No lock exists: values cross between the two by invokeQueued(), as an atomic, or as a
/// signal's own number.
class StatusFileParser final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(StatusFileParser)

    QThread m_thread; // declared first, and so destroyed last

public:
    /// The values of m_state.
    enum State {
        Waiting = 0, ///< The reader hasn't been seen working on the command.
        Started = 1, ///< The status file showed the command as running.
        Ended = 2    ///< The status file showed the command as ended.
    };

    /// Destroys the parser that there is and makes the one for the reader's working directory "MISC" on that drive. The
    /// caller deletes it at the end of the run of the plug-in.
    static StatusFileParser* create(const QString& drivePath);
    /// The parser that create() made, from then until its destruction; null outside of that.
    static StatusFileParser* instance();
    /// Joins the worker thread. A tick that is still to come is dropped, and nothing is emitted for it. A tick under
    /// way ends first, and its signals may still arrive: destroy their receivers before the event loop turns again.
    ~StatusFileParser() override;

    /// Begins a polling run for the command that CommandFileWriter just submitted. Reads the status once, on the
    /// calling thread; the rest happens on the worker thread. Not to be called during a run.
    ///
    /// @param timeoutSec  the limit of the whole run, in seconds
    /// @param startingSec the limit for the reader to show the command as begun, in seconds; 0: the whole run's
    /// @param delayMs     the pause before the first tick, in milliseconds; 0: five ticks' pause, 500 ms
    void start(int timeoutSec, int startingSec, int delayMs);
    /// Asks the run to end, which its next tick does with finished(true) and a record of status Canceled. After a run
    /// that didn't end by a status, the request waits for the first tick of the next one. Without effect in state
    /// Ended. Between start() and the begin of the run the state is still that of the run before: behind one that ended
    /// by a status, a cancel within the pause ahead of the first tick is lost.
    void cancel();

    /// One forced read: rewrites the trigger file, then reads the status file. A failure stands in the log and gives
    /// the default record, whose header is empty. Any thread.
    StatusRecord readStatus() const;
    /// Rewrites the trigger file, by which the reader's drive shows its newest state. False if it can't be opened. Any
    /// thread.
    bool triggerFileSystemUpdate() const;

    /// The reader's working directory: the drive's path with "/MISC" appended.
    const QString m_path;
    /// A State. Keeps its last value when a run ends, until the next one begins. Written by the worker thread.
    std::atomic<int> m_state{Waiting};
    /// The latest record of a run: what a handler of finished() reads. Belongs to the GUI thread, where each new value
    /// arrives before the signal that follows it.
    StatusRecord m_lastStatus;

Q_SIGNALS:
    /// From start() to the worker thread, and of no use to others.
    void pollingRequested(int timeoutSec, int startingSec, int delayMs);
    /// The run ended by a status. True: the status is new and about the submitted command, or the user cancelled; see
    /// m_lastStatus for what happened. False: it is about another command.
    void finished(bool success);
    /// Emitted after each tick that doesn't end the run: 0 to 99, on a curve that is steep at first.
    void progress(int percentage);
    /// The run ended without a status: a limit was passed, or a read failed.
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

    // The worker thread's own.
    int m_startTimeoutMs = 0;
    int m_stopTimeoutMs = 0;
    qint64 m_startDeadline = 0; // this and the next two: milliseconds since the epoch
    qint64 m_stopDeadline = 0;
    qint64 m_startTime = 0;
    const int m_pollIntervalMs = 100;
    StatusRecord m_snapshot; ///< The status just before the run.
    StatusRecord m_latest;   ///< What m_lastStatus has, or is about to have.

    QObject m_guiContext; ///< Stays on the GUI thread: takes what the worker thread hands over.
    std::unique_ptr<QFileSystemWatcher> m_watcher{std::make_unique<QFileSystemWatcher>()};
};

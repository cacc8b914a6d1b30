// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QSemaphore>
#include <QThread>

#include <atomic>
#include <chrono>

/// Ends the process when the GUI thread hasn't come back in time: a run that hangs must not wait for ever for someone
/// to notice. It's a kill from outside, which the database is made for.
class Watchdog final : public QThread
{
    Q_OBJECT

public:
    /// @p exitStatus is the process's.
    explicit Watchdog(int exitStatus, QObject* parent = nullptr);
    ~Watchdog() override;

    /// GUI thread: from now on it is missed after that time. @p message is the line for standard error then; it must
    /// stay as it is until the watchdog is gone.
    void expectBackWithin(std::chrono::milliseconds time, const char* message);

protected:
    void run() override;

private:
    const int m_exitStatus;
    QSemaphore m_stop;
    // Written by the GUI thread, read by this one.
    std::atomic<const char*> m_message{""};
    std::atomic<std::chrono::steady_clock::time_point> m_deadline;
};

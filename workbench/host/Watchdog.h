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
    /// @p exitStatus is the process's, @p message a line for standard error.
    Watchdog(int exitStatus, const QByteArray& message, QObject* parent = nullptr);
    ~Watchdog() override;

    /// GUI thread: from now on it is missed after that time.
    void expectBackWithin(std::chrono::milliseconds time);

protected:
    void run() override;

private:
    const int m_exitStatus;
    const QByteArray m_message;
    QSemaphore m_stop;
    std::atomic<std::chrono::steady_clock::time_point> m_deadline; // written by the GUI thread, read by this one
};

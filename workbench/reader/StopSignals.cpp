// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/reader/StopSignals.h"

#include <QtGlobal>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <QSocketNotifier>

#include <csignal>
#include <unistd.h>
#endif

#ifdef Q_OS_WIN

static StopSignals* s_instance = nullptr;

// Windows calls this on a thread of its own.
static BOOL WINAPI onConsoleEvent(DWORD)
{
    QMetaObject::invokeMethod(s_instance, &StopSignals::stopRequested, Qt::QueuedConnection);
    return TRUE;
}

StopSignals::StopSignals(QObject* parent)
    : QObject(parent)
{
    s_instance = this;
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}

StopSignals::~StopSignals()
{
    SetConsoleCtrlHandler(onConsoleEvent, FALSE);
}

#else

static int s_pipe[2] = {-1, -1};

static void onSignal(int)
{
    // A signal handler may do little more than this. A full pipe means that a wish is on its way already.
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(s_pipe[1], &byte, 1);
}

StopSignals::StopSignals(QObject* parent)
    : QObject(parent)
{
    if (::pipe(s_pipe) != 0)
        return;
    auto* notifier = new QSocketNotifier(s_pipe[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        Q_EMIT stopRequested();
    });
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
}

StopSignals::~StopSignals()
{
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    ::close(s_pipe[0]);
    ::close(s_pipe[1]);
}

#endif

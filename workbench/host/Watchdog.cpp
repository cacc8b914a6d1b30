// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "workbench/host/Watchdog.h"

#include <cstdio>
#include <cstdlib>

namespace {
constexpr int LookEveryMs = 200;
}

Watchdog::Watchdog(int exitStatus, QObject* parent)
    : QThread(parent)
    , m_exitStatus(exitStatus)
    , m_deadline(std::chrono::steady_clock::time_point::max())
{}

Watchdog::~Watchdog()
{
    m_stop.release();
    wait();
}

void Watchdog::expectBackWithin(std::chrono::milliseconds time, const char* message)
{
    m_message = message;
    m_deadline = std::chrono::steady_clock::now() + time;
}

void Watchdog::run()
{
    // Runs on this object's own thread.
    while (!m_stop.tryAcquire(1, LookEveryMs)) {
        if (std::chrono::steady_clock::now() < m_deadline.load())
            continue;
        std::fprintf(stderr, "%s\n", m_message.load());
        std::fflush(nullptr);
        std::_Exit(m_exitStatus);
    }
}

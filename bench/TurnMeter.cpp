// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "bench/TurnMeter.h"

#include "bench/Machine.h"

#include <QAbstractEventDispatcher>
#include <QCursor>
#include <QGuiApplication>
#include <QLibrary>

#include <algorithm>

namespace {

/// The sleep of UsbDeviceAdapter::wait() between two turns.
constexpr double WaitStepMs = 20;
/// Longer turns get a label.
constexpr double LongTurnMs = 4;

TurnMeter* s_meter = nullptr;

/// Only UsbDeviceAdapter::wait() sets that cursor.
bool isInWait()
{
    const QCursor* cursor = QGuiApplication::overrideCursor();
    return cursor && cursor->shape() == Qt::WaitCursor;
}

} // namespace

TurnMeter::TurnMeter(std::function<QString()> label)
    : m_label(std::move(label))
{
    const QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
    if (!dispatcher || !dispatcher->inherits("QEventDispatcherGlib"))
        return;
    // By name, since Qt has loaded GLib and its headers would be another build dependency.
    QLibrary glib("glib-2.0", 0);
    const auto getPoll = reinterpret_cast<GetPoll>(glib.resolve("g_main_context_get_poll_func"));
    m_setPoll = reinterpret_cast<SetPoll>(glib.resolve("g_main_context_set_poll_func"));
    if (!getPoll || !m_setPoll)
        return;
    m_systemPoll = getPoll(nullptr); // null is the main thread's context
    s_meter = this;
    m_setPoll(nullptr, &TurnMeter::poll);
}

TurnMeter::~TurnMeter()
{
    if (m_setPoll)
        m_setPoll(nullptr, m_systemPoll);
    s_meter = nullptr;
}

int TurnMeter::poll(Descriptor* descriptors, unsigned int count, int timeout)
{
    s_meter->endTurn();
    const int ready = s_meter->m_systemPoll(descriptors, count, timeout);
    s_meter->beginTurn();
    return ready;
}

void TurnMeter::beginTurn()
{
    m_inTurn = m_keep;
    m_beginsInWait = isInWait();
    m_workBegin = workMilliseconds();
    m_begin = BenchClock::now();
}

void TurnMeter::endTurn()
{
    if (!m_inTurn)
        return;
    double milliseconds = millisecondsSince(m_begin);
    // Only the sleep is subtracted: the events before it and the work after the last one count.
    if (m_beginsInWait)
        milliseconds = std::max(milliseconds - WaitStepMs, 0.0);
    std::vector<Turn>& list = m_beginsInWait && isInWait() ? waitingTurns : turns;
    list.push_back({milliseconds, workMilliseconds() - m_workBegin, milliseconds < LongTurnMs ? QString() : m_label()});
}

std::vector<double> lengthsOf(const std::vector<TurnMeter::Turn>& turns)
{
    std::vector<double> lengths;
    lengths.reserve(turns.size());
    for (const TurnMeter::Turn& turn : turns)
        lengths.push_back(turn.milliseconds);
    return lengths;
}

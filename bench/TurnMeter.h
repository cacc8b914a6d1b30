// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "bench/Report.h"

#include <QString>

#include <functional>
#include <vector>

/// Measures how long the GUI thread's event loop stands still.
///
/// A turn of the loop begins when the system's poll call brings something to do, and ends when the loop polls again: in
/// between, a click or a repaint would have to wait. All loops of the thread count, also nested ones and single
/// processEvents() calls. The meter stands in for GLib's poll function, through which Qt's event dispatcher waits on
/// Unix, so that it sees each turn to its full length and adds no events of its own.
class TurnMeter final
{
    Q_DISABLE_COPY_MOVE(TurnMeter)

public:
    struct Turn
    {
        double milliseconds;
        QString during; ///< what the label function said at the end of the turn; empty for short turns
    };

    /// The label function names what goes on, for turns that are long enough to be told by name.
    explicit TurnMeter(std::function<QString()> label);
    ~TurnMeter();

    /// False if this thread's event dispatcher isn't one that can be measured.
    bool isMeasuring() const { return m_setPoll != nullptr; }
    /// Only turns that begin while it is on are kept.
    void keep(bool on) { m_keep = on; }

    std::vector<Turn> turns;
    /// The turns in the midst of a UsbDeviceAdapter::wait(), without its sleep. They are mostly empty, and would thin
    /// out the others.
    std::vector<Turn> waitingTurns;

private:
    struct Descriptor; // GLib's GPollFD
    using Poll = int (*)(Descriptor* descriptors, unsigned int count, int timeout);
    using SetPoll = void (*)(void* context, Poll poll);
    using GetPoll = Poll (*)(void* context);

    static int poll(Descriptor* descriptors, unsigned int count, int timeout);
    void turnBegins();
    void turnEnds();

    std::function<QString()> m_label;
    SetPoll m_setPoll = nullptr;
    Poll m_systemPoll = nullptr;
    BenchClock::time_point m_begin;
    bool m_keep = false;
    bool m_inTurn = false;
    bool m_beginsInWait = false;
};

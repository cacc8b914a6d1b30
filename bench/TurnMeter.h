// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include "bench/Report.h"

#include <QString>

#include <functional>
#include <vector>

/// Measures how long the GUI thread's event loop is blocked.
///
/// A turn of the loop starts when the system's poll call returns something to do, and ends when the loop polls again:
/// in between, a click or a repaint would have to wait. All loops of the thread count, also nested ones and single
/// processEvents() calls. The meter replaces GLib's poll function, through which Qt's event dispatcher waits on Unix,
/// so that it sees each turn in its full length and adds no events of its own.
class TurnMeter final
{
    Q_DISABLE_COPY_MOVE(TurnMeter)

public:
    struct Turn
    {
        double milliseconds;
        double work;    ///< processor time in milliseconds, see workMilliseconds()
        QString during; ///< the label at the end of the turn; empty for short turns
    };

    /// @p label describes the current work, for long turns.
    explicit TurnMeter(std::function<QString()> label);
    ~TurnMeter();

    /// Returns false if this thread's event dispatcher can't be measured.
    bool isMeasuring() const { return m_setPoll != nullptr; }
    /// Keeps only turns that start while it is enabled.
    void keep(bool enabled) { m_keep = enabled; }

    std::vector<Turn> turns;
    /// The turns inside a UsbDeviceAdapter::wait(), without its sleep. They are mostly empty, and would dominate the
    /// percentiles.
    std::vector<Turn> waitingTurns;

private:
    struct Descriptor; // GLib's GPollFD
    using Poll = int (*)(Descriptor* descriptors, unsigned int count, int timeout);
    using SetPoll = void (*)(void* context, Poll poll);
    using GetPoll = Poll (*)(void* context);

    static int poll(Descriptor* descriptors, unsigned int count, int timeout);
    void beginTurn();
    void endTurn();

    std::function<QString()> m_label;
    SetPoll m_setPoll = nullptr;
    Poll m_systemPoll = nullptr;
    BenchClock::time_point m_begin;
    double m_workBegin = 0;
    bool m_keep = false;
    bool m_inTurn = false;
    bool m_beginsInWait = false;
};

std::vector<double> lengthsOf(const std::vector<TurnMeter::Turn>& turns);

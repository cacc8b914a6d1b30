// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// A clock for the whole process that moves when nothing else does, so that hours of waiting take as long as the work
/// in between.
///
/// This file's program stands in for the system's calls that tell the time or wait for it: clock_gettime(),
/// gettimeofday(), nanosleep(), poll() and ppoll(), through which Qt, GLib and the standard library do both. Once every
/// thread waits and no descriptor that one of them waits for is ready, the clock jumps to the earliest time that is
/// waited for. Nothing is late or left out by it: timers fire in their order, at their times. A reading of the clock
/// takes a microsecond of it, so that a loop that asks for the time until it has come does come to its end.
///
/// Waits on condition variables are left alone: nothing here waits on one with a limit. Linux alone.
namespace VirtualTime {

/// From now on the clock is this one. Ahead of the application object, once.
void start();
/// The virtual time since start(), in milliseconds.
double milliseconds();
/// The real time since start(), in milliseconds.
double realMilliseconds();
/// How often the clock had to jump while a thread neither waited nor did anything for a while, which is one that waits
/// for something else than time, such as an idle one of a pool.
quint64 forcedJumps();

} // namespace VirtualTime

// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <string>

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
/// In place of start(): shares the clock in @p file, of 4096 zeros at first, with another process; @p party is 0 for
/// one of them and 1 for the other. Only one of them runs at a time, and the clock stands while a thread is at work or
/// waits for something else than time and descriptors. So what the two do to each other comes in the same order each
/// time. A process can go and come again; without party 0 the clock stands. The process ends with the thread that
/// started it, as it might wait for its turn for ever. False if the file can't be used.
bool join(const std::string& file, int party);
/// Sets the wall clock of this process forth or back, and leaves the other clocks alone.
void shiftWallClock(qint64 seconds);
/// The virtual time since start() or join(), in milliseconds.
double milliseconds();
/// The real time since start(), in milliseconds.
double realMilliseconds();
/// How often the clock had to jump while a thread neither waited nor did anything for a while, which is one that waits
/// for something else than time, such as an idle one of a pool.
quint64 forcedJumps();

} // namespace VirtualTime

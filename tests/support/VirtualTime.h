// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// A clock for the whole process that advances only while all threads wait, so that hours of waiting take as long as
/// the work in between.
///
/// The functions of this file replace the system's calls that read the time or wait for it: clock_gettime(),
/// gettimeofday(), nanosleep(), poll() and ppoll(), through which Qt, GLib and the standard library do both. Once every
/// thread waits and no descriptor that one of them waits for is ready, the clock jumps to the earliest requested time.
/// Timers fire in order, at their times. A thread that waits for something other than time and descriptors stops the
/// clock, for instance an idle one of a thread pool, see endIdleThreads().
///
/// Waits on condition variables are not replaced: nothing here waits on one with a limit. Linux only.
namespace VirtualTime {

/// Switches to this clock. Call once, before the application object is created. Reading the clock takes no time, so
/// that all times are the same in each run; a loop that only reads the clock until a time has come never ends.
void start();
/// Ends the idle threads of Qt's global thread pool whenever the calling thread's event loop waits. Call once, after
/// the application object is created. The pool's expiry time can't do that, as it waits on a condition variable.
void endIdleThreads();
/// If @p isPeer, the calling thread runs only while all other threads wait, and vice versa, so that both sides interact
/// in the same order in each run. Only one thread can be the peer; it must call setPeer(false) before it ends.
void setPeer(bool isPeer);
/// Sets the wall clock forward or back. The other clocks don't change.
void shiftWallClock(qint64 seconds);
/// Returns the virtual time since start(), in milliseconds.
double milliseconds();

} // namespace VirtualTime

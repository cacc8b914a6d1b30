// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaObject>
#include <QObject>

#include <utility>

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define MERIVO_THREAD_SANITIZER
#endif
#elif defined(__SANITIZE_THREAD__)
#define MERIVO_THREAD_SANITIZER
#endif

#ifdef MERIVO_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

/// Runs @p action later on the thread of @p target, by one queued event: the only way in which a value crosses between
/// the GUI thread and the polling thread. Actions for one target run in the order in which one thread hands them over;
/// those that are still waiting when the target goes away are dropped. Any thread may call it. Nothing blocks.
///
/// The event queue's own lock orders the two sides. ThreadSanitizer can't see that lock, since Qt's libraries aren't
/// instrumented, so the order is told to it here.
template <typename Action>
void handOver(QObject* target, Action&& action)
{
#ifdef MERIVO_THREAD_SANITIZER
    __tsan_release(target);
    QMetaObject::invokeMethod(
        target,
        [target, work = std::forward<Action>(action)]() mutable {
            __tsan_acquire(target);
            work();
        },
        Qt::QueuedConnection);
#else
    QMetaObject::invokeMethod(target, std::forward<Action>(action), Qt::QueuedConnection);
#endif
}

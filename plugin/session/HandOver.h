// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaObject>
#include <QObject>
#include <QThread>

#include <utility>

#if defined(__SANITIZE_THREAD__)
#define MERIVO_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define MERIVO_THREAD_SANITIZER
#endif
#endif

#ifdef MERIVO_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

// How the GUI thread and the polling thread meet: values cross by handOver(), all but atomics and the numbers that a
// queued signal carries itself, and the thread ends by joinWorker(). The locks of Qt's event queue and thread order the
// two sides. ThreadSanitizer can't see those, since Qt's libraries aren't instrumented, so the order is told to it
// here, and nowhere else.

/// What was done so far comes before what another thread does behind takeOrder() of the same place.
inline void giveOrder([[maybe_unused]] void* place)
{
#ifdef MERIVO_THREAD_SANITIZER
    __tsan_release(place);
#endif
}

inline void takeOrder([[maybe_unused]] void* place)
{
#ifdef MERIVO_THREAD_SANITIZER
    __tsan_acquire(place);
#endif
}

/// An action on its way to another thread. Qt moves it to its final place before it queues it, and deletes it on either
/// side: whoever lets go of it last.
template <typename Action>
class HandedAction final
{
public:
    explicit HandedAction(Action&& action)
        : m_action(std::move(action))
    {}
    HandedAction(HandedAction&& other) noexcept
        : m_action(std::move(other.m_action))
    {
        giveOrder(this);
    }
    HandedAction(const HandedAction&) = delete;
    HandedAction& operator=(const HandedAction&) = delete;
    HandedAction& operator=(HandedAction&&) = delete;
    ~HandedAction() { takeOrder(this); }

    void operator()()
    {
        takeOrder(this);
        m_action();
        giveOrder(this);
    }

private:
    Action m_action;
};

/// Runs @p action later on the thread of @p target, by one queued event: the way for any value that is neither an
/// atomic nor a signal's own number. Actions for one target run in the order in which one thread hands them over; those
/// that are still waiting when the target goes away are dropped. Any thread may call it. Nothing blocks.
template <typename Action>
void handOver(QObject* target, Action action)
{
    QMetaObject::invokeMethod(target, HandedAction<Action>(std::move(action)), Qt::QueuedConnection);
}

/// Starts @p worker, a thread that runs an event loop, so that joinWorker() can end it.
inline void startWorker(QThread& worker, QThread::Priority priority)
{
#ifdef MERIVO_THREAD_SANITIZER
    QObject::connect(
        &worker, &QThread::finished, &worker, [&worker] { giveOrder(&worker); }, Qt::DirectConnection);
#endif
    worker.start(priority);
}

/// Ends the event loop of @p worker, if it runs, and waits without limit for the thread's end. Events and timers that
/// are still waiting are dropped.
inline void joinWorker(QThread& worker)
{
    if (worker.isRunning()) {
        worker.quit();
        worker.wait();
    }
    takeOrder(&worker);
}

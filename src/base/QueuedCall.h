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

// Communication between the GUI thread and the polling thread. Values are posted with invokeQueued(), except atomics
// and the arguments of queued signals, which are numbers. Qt's internal locks order the two sides; the annotations
// describe that order to ThreadSanitizer, which doesn't see the locks because Qt isn't instrumented.

/// Everything before this call happens before whatever follows annotateHappensAfter() for the same address.
inline void annotateHappensBefore([[maybe_unused]] void* address)
{
#ifdef MERIVO_THREAD_SANITIZER
    __tsan_release(address);
#endif
}

inline void annotateHappensAfter([[maybe_unused]] void* address)
{
#ifdef MERIVO_THREAD_SANITIZER
    __tsan_acquire(address);
#endif
}

/// A function object for a queued call. Qt moves it to its final address before it posts the event, and destroys it on
/// whichever of the two threads releases it last.
template <typename Function>
class AnnotatedCall final
{
public:
    explicit AnnotatedCall(Function&& function)
        : m_function(std::move(function))
    {}
    AnnotatedCall(AnnotatedCall&& other) noexcept
        : m_function(std::move(other.m_function))
    {
        annotateHappensBefore(this);
    }
    AnnotatedCall(const AnnotatedCall&) = delete;
    AnnotatedCall& operator=(const AnnotatedCall&) = delete;
    AnnotatedCall& operator=(AnnotatedCall&&) = delete;
    ~AnnotatedCall() { annotateHappensAfter(this); }

    void operator()()
    {
        annotateHappensAfter(this);
        m_function();
        annotateHappensBefore(this);
    }

private:
    Function m_function;
};

/// Posts a call of @p function to the thread of @p target and returns at once. Calls that one thread posts to the same
/// target run in that order. Deleting the target drops the calls that are still queued. Thread-safe.
template <typename Function>
void invokeQueued(QObject* target, Function function)
{
    QMetaObject::invokeMethod(target, AnnotatedCall<Function>(std::move(function)), Qt::QueuedConnection);
}

/// Starts @p thread, which runs an event loop, so that quitAndWait() can end it.
inline void startThread(QThread& thread, QThread::Priority priority)
{
#ifdef MERIVO_THREAD_SANITIZER
    QObject::connect(
        &thread, &QThread::finished, &thread, [&thread] { annotateHappensBefore(&thread); }, Qt::DirectConnection);
#endif
    thread.start(priority);
}

/// Ends the event loop of @p thread, if it is running, and waits for the thread without a limit. Queued events and
/// timers that haven't expired are dropped.
inline void quitAndWait(QThread& thread)
{
    if (thread.isRunning()) {
        thread.quit();
        thread.wait();
    }
    annotateHappensAfter(&thread);
}

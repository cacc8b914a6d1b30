// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "support/VirtualTime.h"

#include <QAbstractEventDispatcher>
#include <QThreadPool>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <limits>
#include <mutex>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

namespace {

using Nanoseconds = qint64;

constexpr Nanoseconds Second = 1000LL * 1000 * 1000;
constexpr Nanoseconds Millisecond = 1000LL * 1000;
constexpr Nanoseconds Never = std::numeric_limits<Nanoseconds>::max();
/// The interval in real time at which a waiting thread checks whether a running thread has ended.
constexpr Nanoseconds Retry = 5 * Millisecond;
/// A fixed start time, as coarse timers are rounded by the clock's value.
constexpr Nanoseconds Start = 1000 * Second;

constexpr timespec toTimespec(Nanoseconds time)
{
    return {time / Second, time % Second};
}

Nanoseconds toNanoseconds(const timespec& time)
{
    return time.tv_sec * Second + time.tv_nsec;
}

/// The system's call, bypassing the replacement in this file and a sanitizer's.
int systemPoll(pollfd* descriptors, nfds_t count, Nanoseconds timeout)
{
    timespec time = toTimespec(timeout); // the system writes to it
    return static_cast<int>(syscall(SYS_ppoll, descriptors, count, &time, nullptr, 0));
}

thread_local bool t_isPeer = false;

/// The descriptors and time that a thread waits for. The last descriptor is for wake-ups by another thread.
class Waiter final
{
    Q_DISABLE_COPY_MOVE(Waiter)

public:
    Waiter() = default;
    ~Waiter()
    {
        if (m_wakeUp >= 0)
            close(m_wakeUp);
    }

    void prepare(const pollfd* wanted, nfds_t count, Nanoseconds until)
    {
        isPeer = t_isPeer;
        if (m_wakeUp < 0)
            m_wakeUp = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
        descriptors.assign(wanted, wanted + count);
        descriptors.push_back({m_wakeUp, POLLIN, 0});
        deadline = until;
    }
    void wakeUp() const { eventfd_write(m_wakeUp, 1); }
    void takeWakeUp() const
    {
        eventfd_t value = 0;
        eventfd_read(m_wakeUp, &value);
    }
    std::vector<pollfd> descriptors;
    Nanoseconds deadline = Never;
    bool isPeer = false;

private:
    int m_wakeUp = -1;
};

std::atomic<bool> s_on{false};
std::atomic<Nanoseconds> s_now{Start}; // of CLOCK_MONOTONIC
std::atomic<Nanoseconds> s_wallOffset{0};
std::mutex s_mutex;
// Guarded by s_mutex, as are the members of the waiters while they are listed.
std::vector<const Waiter*> s_waiters;
bool s_hasPeer = false;

std::size_t threadCount()
{
    struct stat folder = {};
    stat("/proc/self/task", &folder);
    return folder.st_nlink - 2;
}

/// Returns the waiters that are ready, without the peer if another one is. Under s_mutex.
std::vector<const Waiter*> readyWaiters()
{
    std::vector<pollfd> all;
    for (const Waiter* waiter : s_waiters)
        all.insert(all.end(), waiter->descriptors.cbegin(), waiter->descriptors.cend());
    std::vector<const Waiter*> ready;
    if (systemPoll(all.data(), all.size(), 0) <= 0)
        return ready;
    auto descriptor = all.cbegin();
    for (const Waiter* waiter : s_waiters) {
        const auto end = descriptor + static_cast<std::ptrdiff_t>(waiter->descriptors.size());
        if (std::any_of(descriptor, end, [](const pollfd& candidate) { return candidate.revents != 0; }))
            ready.push_back(waiter);
        descriptor = end;
    }
    if (ready.size() > 1)
        ready.erase(std::remove_if(ready.begin(), ready.end(), [](const Waiter* waiter) { return waiter->isPeer; }),
                    ready.end());
    return ready;
}

/// Returns true if a thread that is ready may continue now. Under s_mutex.
bool isTurnOf(const Waiter& waiter)
{
    if (!s_hasPeer)
        return true;
    if (waiter.isPeer)
        return s_waiters.size() >= threadCount() && readyWaiters().front()->isPeer;
    return std::any_of(s_waiters.cbegin(), s_waiters.cend(), [](const Waiter* other) { return other->isPeer; });
}

/// If all threads wait, wakes those that are ready, or sets the clock to the earliest requested time and wakes that
/// waiter. Under s_mutex.
void wakeNext()
{
    if (s_waiters.size() < threadCount())
        return;
    std::vector<const Waiter*> next = readyWaiters();
    if (next.empty()) {
        next.push_back(*std::min_element(s_waiters.cbegin(), s_waiters.cend(), [](const auto* left, const auto* right) {
            return std::pair(left->deadline, left->isPeer) < std::pair(right->deadline, right->isPeer);
        }));
        if (next.front()->deadline == Never)
            return;
        s_now = std::max(s_now.load(), next.front()->deadline);
    }
    for (const Waiter* waiter : next)
        waiter->wakeUp();
}

int waitVirtually(pollfd* descriptors, nfds_t count, Nanoseconds timeout)
{
    const int ready = systemPoll(descriptors, count, 0);
    if (ready != 0 || timeout == 0)
        return ready;

    thread_local Waiter waiter;
    waiter.prepare(descriptors, count, timeout == Never ? Never : s_now + timeout);
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        s_waiters.push_back(&waiter);
        wakeNext();
    }
    // A copy, as other threads poll the waiter's descriptors.
    std::vector<pollfd> set = waiter.descriptors;
    int result = 0;
    int error = 0;
    for (bool isOver = false, isHeld = false; !isOver;) {
        // A thread that is ready but has to wait for its turn waits for the wake-up only.
        result = systemPoll(isHeld ? &set.back() : set.data(), isHeld ? 1 : set.size(), Retry);
        error = errno;
        const std::lock_guard<std::mutex> lock(s_mutex);
        isOver = result != 0 && isTurnOf(waiter);
        isHeld = result != 0 && !isOver;
        if (isOver)
            s_waiters.erase(std::find(s_waiters.begin(), s_waiters.end(), &waiter));
        else
            wakeNext();
    }
    waiter.takeWakeUp();
    if (result > 0)
        result = systemPoll(descriptors, count, 0);
    errno = error;
    return result;
}

} // namespace

void VirtualTime::start()
{
    // In whole seconds, so that all times are truncated to milliseconds in the same way.
    timespec now{};
    syscall(SYS_clock_gettime, CLOCK_REALTIME, &now);
    s_wallOffset = now.tv_sec * Second - Start;
    s_on = true;
}

void VirtualTime::endIdleThreads()
{
    const auto* dispatcher = QAbstractEventDispatcher::instance();
    QThreadPool* pool = QThreadPool::globalInstance();
    const auto end = [pool] {
        pool->waitForDone();
    };
    QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, pool, end);
    QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, pool, end);
}

void VirtualTime::setPeer(bool isPeer)
{
    const std::lock_guard<std::mutex> lock(s_mutex);
    t_isPeer = isPeer;
    s_hasPeer = isPeer;
}

void VirtualTime::shiftWallClock(qint64 seconds)
{
    s_wallOffset += seconds * Second;
}

double VirtualTime::milliseconds()
{
    return static_cast<double>(s_now - Start) / Millisecond;
}

// Replacements of the system's functions. The program's symbols precede those of the libraries, the C library included.

extern "C" {

Q_DECL_EXPORT int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    const bool isVirtual = s_on && clock != CLOCK_PROCESS_CPUTIME_ID && clock != CLOCK_THREAD_CPUTIME_ID;
    if (!isVirtual)
        return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    const bool isWall = clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE;
    *time = toTimespec(s_now + (isWall ? s_wallOffset.load() : 0));
    return 0;
}

Q_DECL_EXPORT int gettimeofday(timeval* time, void*) noexcept
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    *time = {now.tv_sec, now.tv_nsec / 1000};
    return 0;
}

Q_DECL_EXPORT int nanosleep(const timespec* time, timespec* remaining)
{
    if (!s_on)
        return static_cast<int>(syscall(SYS_nanosleep, time, remaining));
    return waitVirtually(nullptr, 0, toNanoseconds(*time));
}

Q_DECL_EXPORT int ppoll(pollfd* descriptors, nfds_t count, const timespec* timeout, const sigset_t* mask)
{
    if (!s_on || mask) {
        timespec time = timeout ? *timeout : timespec{};
        return static_cast<int>(
            syscall(SYS_ppoll, descriptors, count, timeout ? &time : nullptr, mask, sizeof(quint64)));
    }
    return waitVirtually(descriptors, count, timeout ? toNanoseconds(*timeout) : Never);
}

Q_DECL_EXPORT int poll(pollfd* descriptors, nfds_t count, int timeout)
{
    const timespec time = toTimespec(std::max(timeout, 0) * Millisecond);
    return ppoll(descriptors, count, timeout < 0 ? nullptr : &time, nullptr);
}

} // extern "C"

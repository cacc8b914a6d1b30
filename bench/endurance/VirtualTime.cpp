// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "bench/endurance/VirtualTime.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <limits>
#include <mutex>
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
constexpr Nanoseconds Reading = 1000;
constexpr Nanoseconds Never = std::numeric_limits<Nanoseconds>::max();
/// So long, in real time, a thread may be between two waits before the clock goes on without it.
constexpr Nanoseconds Patience = 200 * Millisecond;

constexpr timespec toTimespec(Nanoseconds time)
{
    return {time / Second, time % Second};
}

Nanoseconds toNanoseconds(const timespec& time)
{
    return time.tv_sec * Second + time.tv_nsec;
}

// The system's own calls, past what this file puts in their place, and past a sanitizer's.

Nanoseconds systemTime(clockid_t clock)
{
    timespec time{};
    syscall(SYS_clock_gettime, clock, &time);
    return toNanoseconds(time);
}

int systemPoll(pollfd* descriptors, nfds_t count, Nanoseconds timeout)
{
    timespec time = toTimespec(timeout); // the system writes to it
    return static_cast<int>(syscall(SYS_ppoll, descriptors, count, &time, nullptr, 0));
}

/// What one thread waits for. Its last descriptor is the one by which another thread wakes it.
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
    bool isReady() const
    {
        std::vector<pollfd> copy = descriptors;
        return systemPoll(copy.data(), copy.size(), 0) != 0;
    }

    std::vector<pollfd> descriptors;
    Nanoseconds deadline = Never;

private:
    int m_wakeUp = -1;
};

std::atomic<bool> s_on{false};
std::atomic<Nanoseconds> s_now{0}; // of CLOCK_MONOTONIC
Nanoseconds s_start = 0;           // this and the next one: fixed by start()
Nanoseconds s_wallOffset = 0;
std::mutex s_mutex;
std::vector<const Waiter*> s_waiters; // guarded by s_mutex, as are the waiters' members while they stand in it
quint64 s_forcedJumps = 0;            // guarded by s_mutex

std::size_t threadCount()
{
    struct stat folder = {};
    stat("/proc/self/task", &folder);
    return folder.st_nlink - 2;
}

/// Sets the clock to the earliest time that is waited for, unless somebody has something to do before. Under s_mutex.
void jumpIfIdle(bool ignoringOthers)
{
    const bool allWait = s_waiters.size() >= threadCount();
    if (!allWait && !ignoringOthers)
        return;
    if (std::any_of(s_waiters.cbegin(), s_waiters.cend(), [](const Waiter* waiter) { return waiter->isReady(); }))
        return;
    const auto first =
        std::min_element(s_waiters.cbegin(), s_waiters.cend(),
                         [](const Waiter* left, const Waiter* right) { return left->deadline < right->deadline; });
    if ((*first)->deadline == Never)
        return;
    s_now = std::max(s_now.load(), (*first)->deadline);
    if (!allWait)
        ++s_forcedJumps;
    (*first)->wakeUp();
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
        jumpIfIdle(false);
    }
    // On a copy, since the waiter's own is looked at by others.
    std::vector<pollfd> set = waiter.descriptors;
    int result = 0;
    for (bool wokenUp = false; !wokenUp;) {
        result = systemPoll(set.data(), set.size(), Patience);
        if (result < 0)
            break;
        wokenUp = set.back().revents != 0;
        result -= wokenUp ? 1 : 0;
        if (result > 0)
            break;
        if (!wokenUp) {
            const std::lock_guard<std::mutex> lock(s_mutex);
            jumpIfIdle(true);
        }
    }
    const int error = errno;
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        s_waiters.erase(std::find(s_waiters.begin(), s_waiters.end(), &waiter));
        waiter.takeWakeUp();
    }
    for (nfds_t i = 0; i < count; ++i)
        descriptors[i].revents = set.at(i).revents;
    errno = error;
    return result;
}

} // namespace

void VirtualTime::start()
{
    s_start = systemTime(CLOCK_MONOTONIC);
    s_wallOffset = systemTime(CLOCK_REALTIME) - s_start;
    s_now = s_start;
    s_on = true;
}

double VirtualTime::milliseconds()
{
    return static_cast<double>(s_now - s_start) / Millisecond;
}

double VirtualTime::realMilliseconds()
{
    return static_cast<double>(systemTime(CLOCK_MONOTONIC) - s_start) / Millisecond;
}

quint64 VirtualTime::forcedJumps()
{
    const std::lock_guard<std::mutex> lock(s_mutex);
    return s_forcedJumps;
}

// What stands in for the system's. The program's symbols come before those of the libraries, the C library included.

extern "C" {

Q_DECL_EXPORT int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    const bool isVirtual = s_on && clock != CLOCK_PROCESS_CPUTIME_ID && clock != CLOCK_THREAD_CPUTIME_ID;
    if (!isVirtual)
        return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    const bool isWall = clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE;
    *time = toTimespec((s_now += Reading) + (isWall ? s_wallOffset : 0));
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

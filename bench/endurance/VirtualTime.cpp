// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "bench/endurance/VirtualTime.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <limits>
#include <mutex>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/prctl.h>
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
/// So long until it is looked whether a thread that didn't wait has ended.
constexpr Nanoseconds Retry = 5 * Millisecond;
/// Where a shared clock begins, always at the same time, by which timers that needn't be exact are rounded.
constexpr Nanoseconds SharedStart = 1000 * Second;
/// So many readings of a shared clock take no time, so that all times are the same in each run; a loop that asks for
/// more waits for the time.
constexpr int FreeReadings = 100000;

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

/// What a process that shares the clock is at. Two of them never run at the same time: one that has something to do
/// waits for its turn, until the other one waits too.
struct Party
{
    enum State : qint32 { Absent, Busy, Idle };
    State state;
    qint32 turns; // how often it went on
    qint32 seen;  // the other's turns when this one last found nothing to do; NoTurn if the other was busy
    Nanoseconds deadline;
};

constexpr qint32 NoTurn = -1;

/// Lies in a file for two processes, whose lock guards the parties.
struct Clock
{
    Party parties[2];
    std::atomic<Nanoseconds> now; // of CLOCK_MONOTONIC
};

Clock s_ownClock{};
std::atomic<bool> s_on{false};
// These are fixed by start() and join().
Clock* s_clock = &s_ownClock;
int s_file = -1; // the clock's, if it is shared
int s_party = 0;
int s_bells[2] = {-1, -1};
Nanoseconds s_start = 0;
std::atomic<Nanoseconds> s_wallOffset{0};
std::atomic<int> s_readings{0}; // since this process went on
std::mutex s_mutex;
std::vector<const Waiter*> s_waiters; // guarded by s_mutex, as are the waiters' members while they stand in it
quint64 s_forcedJumps = 0;            // guarded by s_mutex

/// Guards the parties against the other process; a process that is killed lets go.
class PartiesLock final
{
    Q_DISABLE_COPY_MOVE(PartiesLock)

public:
    PartiesLock() { lock(LOCK_EX); }
    ~PartiesLock() { lock(LOCK_UN); }

private:
    static void lock(int operation)
    {
        if (s_file >= 0 && flock(s_file, operation) != 0)
            std::abort();
    }
};

std::size_t threadCount()
{
    struct stat folder = {};
    stat("/proc/self/task", &folder);
    return folder.st_nlink - 2 - (s_file < 0 ? 0 : 1); // the listener to the bell
}

void ring(int party)
{
    if (s_bells[party] >= 0 && ::write(s_bells[party], "", 1) != 1)
        std::abort(); // a pipe full of calls that nobody hears
}

/// The parties' lock is held, as in the next one.
void goOn()
{
    Party& own = s_clock->parties[s_party];
    own.state = Party::Busy;
    ++own.turns;
    s_readings = 0;
}

bool isOurTurn()
{
    return s_clock->parties[s_party].state == Party::Busy || s_clock->parties[1 - s_party].state != Party::Busy;
}

/// Whether a thread that has something to do may go on now. Under s_mutex.
bool takeTurn()
{
    const PartiesLock lock;
    if (!isOurTurn())
        return false;
    goOn();
    return true;
}

/// Whether this process, which has nothing to do ahead of @p deadline, goes on at that time, and the clock is set to
/// it. If not, the other process is asked whether it has something to do by now, or told that its time has come; a busy
/// one asks on its own when it is through. The parties' lock is held.
bool reaches(Nanoseconds deadline)
{
    Party& own = s_clock->parties[s_party];
    const Party& other = s_clock->parties[1 - s_party];
    own.state = Party::Idle;
    own.deadline = deadline;
    own.seen = other.state == Party::Busy ? NoTurn : other.turns;
    if (other.state == Party::Busy || (s_party == 1 && other.state == Party::Absent))
        return false;
    const bool isOtherIdle = other.state == Party::Idle;
    const bool isOtherFirst =
        isOtherIdle && (other.deadline < deadline || (other.deadline == deadline && s_party == 1));
    // What this process did can have given the other one something to do ahead of its time.
    const bool mustAsk = isOtherIdle && other.seen != own.turns;
    const Nanoseconds due = isOtherFirst ? other.deadline : deadline;
    if (!mustAsk && due != Never)
        s_clock->now = std::max(s_clock->now.load(), due);
    if (mustAsk || (isOtherFirst && due != Never))
        ring(1 - s_party);
    return !mustAsk && !isOtherFirst && due != Never;
}

/// Sets the clock to the earliest time that is waited for, unless somebody has something to do before. Under s_mutex.
void jumpIfIdle(bool ignoringOthers)
{
    const bool allWait = s_waiters.size() >= threadCount();
    if (!allWait && !ignoringOthers)
        return;
    const PartiesLock lock;
    std::vector<const Waiter*> next;
    std::copy_if(s_waiters.cbegin(), s_waiters.cend(), std::back_inserter(next),
                 [](const Waiter* waiter) { return waiter->isReady(); });
    if (next.empty()) {
        const auto first =
            std::min_element(s_waiters.cbegin(), s_waiters.cend(),
                             [](const Waiter* left, const Waiter* right) { return left->deadline < right->deadline; });
        if (!reaches((*first)->deadline))
            return;
        next.push_back(*first);
        if (!allWait)
            ++s_forcedJumps;
    } else if (!isOurTurn()) {
        return;
    }
    goOn();
    for (const Waiter* waiter : next)
        waiter->wakeUp();
}

int waitVirtually(pollfd* descriptors, nfds_t count, Nanoseconds timeout)
{
    const int ready = systemPoll(descriptors, count, 0);
    if (ready != 0 || timeout == 0)
        return ready;

    thread_local Waiter waiter;
    waiter.prepare(descriptors, count, timeout == Never ? Never : s_clock->now + timeout);
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        s_waiters.push_back(&waiter);
        jumpIfIdle(false);
    }
    // On a copy, since the waiter's own is looked at by others.
    std::vector<pollfd> set = waiter.descriptors;
    int result = 0;
    int error = 0;
    for (bool isOver = false, isHeld = false; !isOver;) {
        // While the other process runs, what is ready here must wait for the wake-up.
        result = systemPoll(isHeld ? &set.back() : set.data(), isHeld ? 1 : set.size(), s_file < 0 ? Patience : Retry);
        error = errno;
        const std::lock_guard<std::mutex> lock(s_mutex);
        isOver = result != 0 && takeTurn();
        isHeld = result != 0 && !isOver;
        if (isOver)
            s_waiters.erase(std::find(s_waiters.begin(), s_waiters.end(), &waiter));
        else
            jumpIfIdle(s_file < 0);
    }
    waiter.takeWakeUp();
    if (result > 0)
        result = systemPoll(descriptors, count, 0);
    errno = error;
    return result;
}

/// Looks again whenever the other process calls.
void listenToBell()
{
    for (char call = 0; ::read(s_bells[s_party], &call, 1) == 1;) {
        const std::lock_guard<std::mutex> lock(s_mutex);
        jumpIfIdle(false);
    }
}

void leave()
{
    const std::lock_guard<std::mutex> mutex(s_mutex);
    const PartiesLock lock;
    s_clock->parties[s_party].state = Party::Absent;
    ring(1 - s_party);
}

Nanoseconds reading()
{
    const bool takesTime = s_file < 0 || ++s_readings > FreeReadings;
    return takesTime ? s_clock->now += Reading : s_clock->now.load();
}

} // namespace

void VirtualTime::start()
{
    s_start = systemTime(CLOCK_MONOTONIC);
    s_wallOffset = systemTime(CLOCK_REALTIME) - s_start;
    s_clock->now = s_start;
    s_on = true;
}

bool VirtualTime::join(const std::string& file, int party)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    s_party = party;
    s_file = ::open(file.c_str(), O_RDWR | O_CLOEXEC);
    void* const memory = mmap(nullptr, sizeof(Clock), PROT_READ | PROT_WRITE, MAP_SHARED, s_file, 0);
    if (s_file < 0 || memory == MAP_FAILED)
        return false;
    s_clock = static_cast<Clock*>(memory);
    for (int bell = 0; bell < 2; ++bell) {
        const std::string name = file + (bell == 0 ? ".bell0" : ".bell1");
        mkfifo(name.c_str(), S_IRUSR | S_IWUSR);
        s_bells[bell] = ::open(name.c_str(), O_RDWR | O_CLOEXEC | (bell == party ? 0 : O_NONBLOCK));
        if (s_bells[bell] < 0)
            return false;
    }
    {
        const PartiesLock lock;
        if (s_clock->now == 0)
            s_clock->now = SharedStart;
        goOn();
    }
    s_start = s_clock->now;
    // By whole seconds, so that all times are cut to milliseconds alike.
    s_wallOffset = (systemTime(CLOCK_REALTIME) / Second - SharedStart / Second) * Second;
    s_on = true;
    std::thread(listenToBell).detach();
    return std::atexit(leave) == 0;
}

void VirtualTime::shiftWallClock(qint64 seconds)
{
    s_wallOffset += seconds * Second;
}

double VirtualTime::milliseconds()
{
    return static_cast<double>(s_clock->now - s_start) / Millisecond;
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
    *time = toTimespec(reading() + (isWall ? s_wallOffset.load() : 0));
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

// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "faults/Weather.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <memory>
#include <mutex>

namespace {

enum Watch : char { Unwatched, Watched, Full };
std::array<std::atomic<char>, 4096> watches{}; // by file descriptor
std::mutex mutex;                              // for the rest
std::shared_ptr<const Weather::OpeningAction> openingAction;
QByteArray spoiledPath;
Weather::Failure spoiledBy = Weather::Open;
int spoiledTurn = -1;
int operations = 0;
int failures = 0;
/// The main thread, and the plug-in's: it alone opens the trigger file.
thread_local bool isSpoilt = getpid() == gettid();

/// The C library's own function of that name.
template <class Function>
Function* behind(Function*, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}
#define BEHIND(name) static auto* const real = behind(&(name), #name)

bool fails(Weather::Failure failure)
{
    const std::lock_guard lock(mutex);
    if (spoiledTurn < 0 || spoiledBy != failure || (++operations != spoiledTurn && spoiledTurn > 0))
        return false;
    ++failures;
    if (failure == Weather::Kill)
        raise(SIGKILL);
    return true;
}

bool isMeant(const char* path)
{
    const std::lock_guard lock(mutex);
    const auto name = QByteArray::fromRawData(path, int(qstrlen(path)));
    isSpoilt = isSpoilt || name.endsWith("/MISCNoCommand.txt");
    return isSpoilt && spoiledTurn >= 0 && name.startsWith(spoiledPath);
}

/// To be called without the mutex: it opens files on its own.
std::shared_ptr<const Weather::OpeningAction> currentOpeningAction()
{
    const std::lock_guard lock(mutex);
    return openingAction;
}

std::atomic<char>& watchOf(int file)
{
    static std::atomic<char> none{Unwatched};
    return file >= 0 && std::size_t(file) < watches.size() ? watches[std::size_t(file)] : none;
}

int failWith(int error)
{
    errno = error;
    return -1;
}

/// Hands all of what is to be written to @p put, a part or nothing.
template <class Put>
ssize_t written(int file, size_t size, Put put)
{
    if (watchOf(file) == Unwatched)
        return put(size);
    fails(Weather::Kill);
    if (watchOf(file) == Full || fails(Weather::Write))
        return failWith(ENOSPC);
    if (!fails(Weather::NoSpace))
        return put(size);
    watchOf(file) = Full;
    return put(size / 2);
}

} // namespace

void Weather::spoil(Failure failure, int nth, const QByteArray& path)
{
    const std::lock_guard lock(mutex);
    spoiledPath = path;
    spoiledBy = failure;
    spoiledTurn = path.isEmpty() ? -1 : nth;
    operations = 0;
    failures = 0;
}

int Weather::spoiled()
{
    const std::lock_guard lock(mutex);
    return failures;
}

void Weather::onOpening(const OpeningAction& action)
{
    auto next = action ? std::make_shared<const OpeningAction>(action) : nullptr;
    const std::lock_guard lock(mutex);
    openingAction.swap(next);
}

extern "C" {

int open64(const char* path, int flags, ...)
{
    BEHIND(open64);
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (const auto action = currentOpeningAction())
        (*action)(path);
    const bool meant = isMeant(path);
    if (meant && fails(Weather::Open))
        return failWith(EIO);
    const int file = real(path, flags, mode);
    watchOf(file) = meant ? Watched : Unwatched;
    return file;
}

ssize_t read(int file, void* bytes, size_t size)
{
    BEHIND(read);
    const bool isWatched = watchOf(file) != Unwatched;
    if (isWatched && fails(Weather::Read))
        return failWith(EIO);
    const ssize_t got = real(file, bytes, size);
    return got > 0 && isWatched && fails(Weather::CutRead) ? got / 2 : got;
}

ssize_t write(int file, const void* bytes, size_t size)
{
    BEHIND(write);
    return written(file, size, [&](size_t part) { return real(file, bytes, part); });
}

ssize_t pwrite64(int file, const void* bytes, size_t size, off64_t at)
{
    BEHIND(pwrite64);
    return written(file, size, [&](size_t part) { return real(file, bytes, part, at); });
}

int close(int file)
{
    BEHIND(close);
    const bool isFailing = watchOf(file).exchange(Unwatched) != Unwatched && fails(Weather::Close);
    const int result = real(file);
    return isFailing ? failWith(EIO) : result;
}

DIR* opendir(const char* path)
{
    BEHIND(opendir);
    if (!isMeant(path) || !fails(Weather::List))
        return real(path);
    errno = EIO;
    return nullptr;
}

} // extern "C"

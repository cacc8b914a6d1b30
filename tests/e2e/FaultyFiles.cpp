// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#include "e2e/FaultyFiles.h"

#include <QDir>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <fstream>
#include <mutex>

namespace {

enum Watch : char { Unwatched, Watched, Full };
std::array<std::atomic<char>, 4096> watches{}; // by file descriptor
std::mutex mutex;                              // guards the rest
QByteArray faultyPath;
FaultyFiles::Failure requested = FaultyFiles::Open;
int turn = -1;
int operations = 0;
int failed = 0;
/// Set for the main thread and for the plug-in's, the only one that opens the trigger file.
thread_local bool isAffected = getpid() == gettid();

/// The C library's function of that name.
#define LIBRARY_FUNCTION(name) static auto* const real = reinterpret_cast<decltype(&(name))>(dlsym(RTLD_NEXT, #name))

bool fails(FaultyFiles::Failure failure)
{
    const std::lock_guard lock(mutex);
    if (turn < 0 || requested != failure || (++operations != turn && turn > 0))
        return false;
    ++failed;
    if (failure == FaultyFiles::Kill)
        raise(SIGKILL);
    return true;
}

bool isFaulty(const char* path)
{
    const std::lock_guard lock(mutex);
    const auto name = QByteArray::fromRawData(path, int(qstrlen(path)));
    isAffected = isAffected || name.endsWith("/MISCNoCommand.txt");
    return isAffected && turn >= 0 && name.startsWith(faultyPath);
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

/// Passes all of what is to be written to @p put, a part of it or nothing.
template <class Put>
ssize_t written(int file, size_t size, Put put)
{
    if (watchOf(file) == Unwatched)
        return put(size);
    fails(FaultyFiles::Kill);
    if (watchOf(file) == Full || fails(FaultyFiles::Write))
        return failWith(ENOSPC);
    if (!fails(FaultyFiles::NoSpace))
        return put(size);
    watchOf(file) = Full;
    return put(size / 2);
}

} // namespace

void FaultyFiles::fail(Failure failure, int nth, const QByteArray& path)
{
    const std::lock_guard lock(mutex);
    faultyPath = path;
    requested = failure;
    turn = nth;
    operations = 0;
    failed = 0;
}

int FaultyFiles::stop()
{
    const std::lock_guard lock(mutex);
    turn = -1;
    return failed;
}

extern "C" {

int open64(const char* path, int flags, ...)
{
    LIBRARY_FUNCTION(open64);
    va_list arguments;
    va_start(arguments, flags);
    const bool hasMode = flags & O_CREAT || (flags & O_TMPFILE) == O_TMPFILE;
    const mode_t mode = hasMode ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    const bool faulty = isFaulty(path);
    if (faulty && fails(FaultyFiles::Open))
        return failWith(EIO);
    if (faulty && fails(FaultyFiles::Change))
        std::ofstream(path, std::ios::app) << "changed";
    if (faulty && fails(FaultyFiles::Vanish)) {
        const QString drive = QString(path).section('/', 0, -3); // has the file in its folder MISC
        QDir().rename(drive, drive + ".away");
    }
    const int file = real(path, flags, mode);
    watchOf(file) = faulty ? Watched : Unwatched;
    return file;
}

ssize_t read(int file, void* bytes, size_t size)
{
    LIBRARY_FUNCTION(read);
    const bool isWatched = watchOf(file) != Unwatched;
    if (isWatched && fails(FaultyFiles::Read))
        return failWith(EIO);
    const ssize_t got = real(file, bytes, size);
    return got > 0 && isWatched && fails(FaultyFiles::CutRead) ? got / 2 : got;
}

ssize_t write(int file, const void* bytes, size_t size)
{
    LIBRARY_FUNCTION(write);
    return written(file, size, [&](size_t part) { return real(file, bytes, part); });
}

ssize_t pwrite64(int file, const void* bytes, size_t size, off64_t at)
{
    LIBRARY_FUNCTION(pwrite64);
    return written(file, size, [&](size_t part) { return real(file, bytes, part, at); });
}

int close(int file)
{
    LIBRARY_FUNCTION(close);
    const bool isFailing = watchOf(file).exchange(Unwatched) != Unwatched && fails(FaultyFiles::Close);
    const int result = real(file);
    return isFailing ? failWith(EIO) : result;
}

DIR* opendir(const char* path)
{
    LIBRARY_FUNCTION(opendir);
    if (!isFaulty(path) || !fails(FaultyFiles::List))
        return real(path);
    errno = EIO;
    return nullptr;
}

} // extern "C"

// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <optional>
#include <vector>

/// Returns the peak resident memory of this process in KiB, or 0 if the system doesn't report it. Unlike the value of
/// getrusage() it isn't inherited from the parent process.
long peakMemory();

/// Returns the processor time of the calling thread in milliseconds, or -1 if the system doesn't report it.
double threadMilliseconds();

/// Returns a time in milliseconds for work that never waits: threadMilliseconds(), or elapsed time where that isn't
/// available. On a busy machine elapsed time grows faster than the work, because longer work is interrupted more often.
double workMilliseconds();

/// Creates or truncates the trigger file, then reads the status file: the minimum cost of a forced read. Returns false
/// if that fails or the system doesn't have these calls.
bool bareRead(const char* trigger, const char* status);

/// Makes the process keep freed memory, if the C library supports that. Otherwise a call that allocates much memory
/// gets new pages from the kernel each time, which hides how its own work grows.
void keepFreedMemory();

/// Returns a folder on a file system in memory, or the system's temporary folder where there is none.
QString memoryFolder();

/// Writes that many MiB of random bytes, the same at each call. Returns false if that fails.
bool writeRandomFile(const QString& path, int mebibytes);

/// Runs this program in another process as "PROGRAM --child ARGUMENT". Returns the numbers that it prints, separated by
/// spaces, or nothing if it fails.
std::optional<std::vector<double>> runChild(const QString& argument);
/// Returns the argument and calls disableLog() if this process was started by runChild().
std::optional<QString> childArgument(int argc, char** argv);

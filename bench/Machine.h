// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <optional>
#include <vector>

/// Returns the most memory that this process has had resident so far, in KiB, or 0 where the system doesn't report it.
/// Unlike that of getrusage() it isn't inherited from the parent process.
long peakMemory();

/// Returns the processor time of the calling thread in milliseconds, or -1 where the system doesn't report it.
double threadMilliseconds();

/// Returns a time in milliseconds for work that never waits: threadMilliseconds(), or plain time where that isn't
/// available. On a busy machine plain time grows faster than the work, as longer work is interrupted more.
double workMilliseconds();

/// Lets the process keep memory that is freed, if the C library can. Otherwise a call that takes much memory pays the
/// kernel for new pages each time, which hides how its own work grows.
void keepFreedMemory();

/// Returns a folder on a file system in memory, or the system's temporary folder where there is none.
QString memoryFolder();

/// Writes that many MiB of random bytes, the same at each call. Returns false if that fails.
bool writeRandomFile(const QString& path, int mebibytes);

/// Runs this program in another process as "PROGRAM --child ARGUMENT". Returns the numbers that it prints, separated by
/// blanks, or nothing if it fails.
std::optional<std::vector<double>> runChild(const QString& argument);
/// Returns the argument and calls disableLog() if this process was started by runChild().
std::optional<QString> childArgument(int argc, char** argv);

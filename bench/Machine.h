// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The most memory that this process has had resident so far, in KiB; 0 where the system doesn't tell. Unlike
/// getrusage() this isn't inherited from the process that started this one.
long peakMemory();

/// The processor time that the calling thread has taken so far, in milliseconds; below 0 where the system doesn't tell.
double threadMilliseconds();

/// A clock for work that never waits, in milliseconds: threadMilliseconds(), or plain time where that isn't told. On a
/// busy machine plain time grows faster than the work, as longer work is interrupted more.
double workMilliseconds();

/// From now on memory that is freed stays with the process, where the C library can be told so. Otherwise a call that
/// takes much of it pays the kernel for fresh pages each time, which hides how its own work grows.
void keepFreedMemory();

/// A folder on a file system in memory, or the system's temporary folder where there is none.
QString memoryFolder();

/// Writes that many MiB of random bytes, the same at each call. False if that fails.
bool writeRandomFile(const QString& path, int mebibytes);

// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <functional>

/// File operations that fail when a test wants them to. The functions of the source file replace those of the C library
/// for all libraries of the process. Call the setters from one thread only.
namespace FaultyFiles {
enum Failure { Open, Read, CutRead, Write, NoSpace, Close, List, Kill };

/// Makes the @p nth such operation on paths that begin with @p path fail, or each of them for 0. Only the main thread
/// and the plug-in's are affected. A cut read returns half, a full drive takes half of what is written, and a kill ends
/// the process at a write. Replaces an earlier request.
void fail(Failure failure, int nth, const QByteArray& path);
/// Returns how many operations failed since the last request.
int failures();
using OpeningAction = std::function<void(const QByteArray& path)>;
/// Calls @p action before each opening of a file, on the thread that opens it.
void onOpening(const OpeningAction& action);
} // namespace FaultyFiles

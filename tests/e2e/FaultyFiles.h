// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

/// File operations that fail when a test wants them to. The functions of the source file replace those of the C library
/// for all libraries of the process. Call the setters from one thread only.
namespace FaultyFiles {
enum Failure { Open, Read, CutRead, Write, NoSpace, Close, List, Kill, Change, Vanish };

/// Makes the @p nth such operation on paths that begin with @p path fail, or each of them for 0. Only the main thread
/// and the plug-in's are affected. A cut read returns half, a full drive takes half of what is written, a kill ends the
/// process at a write, a change appends to a file when it is opened, and of a drive that vanishes the path is one of a
/// file in its folder MISC, whose opening it precedes. Replaces an earlier request.
void fail(Failure failure, int nth, const QByteArray& path);
/// Withdraws the request, and returns how many operations it made fail.
int stop();
} // namespace FaultyFiles

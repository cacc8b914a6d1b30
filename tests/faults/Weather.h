// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <functional>

/// What a process can't choose: the luck of its file operations. The program's own definitions of the C library's
/// functions stand in front of it, for all libraries of the process. The setters belong to one thread.
namespace Weather {
enum Failure { Open, Read, CutRead, Write, NoSpace, Close, List, Kill };

/// The @p nth such operation of the main or the plug-in's thread on paths that begin with @p path fails, or each for 0;
/// the host's watcher of the traffic has its own. A cut read ends in the middle, a full drive takes half of what is
/// written, and a kill ends the process at a write. One order at a time.
void spoil(Failure failure, int nth, const QByteArray& path);
/// How many operations failed since then.
int spoiled();
using OpeningAction = std::function<void(const QByteArray& path)>;
/// @p action is called ahead of each opening of a file, in the thread that opens.
void onOpening(const OpeningAction& action);
} // namespace Weather

// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

/// Private to the toolkit: the one place that asks the operating system about memory.
struct LmMemoryFigures
{
    double total = -1; ///< Bytes; -1 if unknown, as the next.
    double available = -1;
};

/// The figures of LmDriveSpace::memoryInfo().
LmMemoryFigures lmMemoryFigures(int kind);

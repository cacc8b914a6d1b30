// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

/// Total and available memory, from the only source that calls the operating system for it. Private to the toolkit.
struct LmMemoryFigures
{
    double total = -1;     ///< Bytes; -1 if unknown.
    double available = -1; ///< Bytes; -1 if unknown.
};

/// Returns the figures of LmDriveSpace::memoryInfo().
LmMemoryFigures lmMemoryFigures(int kind);

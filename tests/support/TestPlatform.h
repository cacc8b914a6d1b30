// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

// What tests need to know about the compiler and the system.

/// True if a pointer to a virtual member begins with the offset in the virtual table.
#if defined(__x86_64__) && !defined(_MSC_VER)
constexpr bool HasItaniumAbi = true;
#else
constexpr bool HasItaniumAbi = false;
#endif

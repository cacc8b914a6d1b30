// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <array>

/// The constant that host and plug-in share for the MAC of an exchange file. Its lower-case hexadecimal text, followed
/// by the GUID text of the open database, is in UTF-8 the key of that MAC; the whole key is stored nowhere.
inline constexpr std::array<unsigned char, 16> SharedMacKey{0x7c, 0x1e, 0xa4, 0x93, 0x0d, 0x58, 0xe2, 0x4b,
                                                            0x96, 0xf1, 0x3a, 0x27, 0xb8, 0x65, 0xcd, 0x02};

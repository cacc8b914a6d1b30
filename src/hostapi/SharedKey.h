// SPDX-FileCopyrightText: 2026 The Merivo Connections developers
// SPDX-License-Identifier: MIT
#pragma once

#include <array>

/// The part of the MAC key of exchange files that host and plug-in share. The key is the UTF-8 text of this constant in
/// lower-case hexadecimal followed by the GUID of the open database; it is not stored anywhere as a whole.
inline constexpr std::array<unsigned char, 16> SharedMacKey{0x7c, 0x1e, 0xa4, 0x93, 0x0d, 0x58, 0xe2, 0x4b,
                                                            0x96, 0xf1, 0x3a, 0x27, 0xb8, 0x65, 0xcd, 0x02};

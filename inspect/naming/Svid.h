// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Sensor ids as people write them, and points in words.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qel::inspect {

/// Reads 0x with hexadecimal digits, or a decimal number, signed or not; of at most 64 bits.
std::optional<long long> parseSvid(std::string_view text);

/// What a point is, in a word: "unit", "inlet", "phase", "circuit", "socket", "sensor", "group", "rcm"; "point" for any
/// other kind. Reentrant.
std::string_view kindName(long long svid);

/// Kind and position of a point in words: "unit 1", "inlet 1", "circuit 1/2", "socket 1/2/5", "phase 2/3",
/// "sensor 1/1", "group 1". Levels that the id does not use are left out; the key is not looked at.
std::string pointLabel(long long svid);

} // namespace qel::inspect

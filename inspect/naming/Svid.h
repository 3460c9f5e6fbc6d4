// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Sensor ids as people read and write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qel::inspect {

/// The point that a value's id belongs to: the id with its low 16 bits cleared.
constexpr long long pointOf(long long svid) {
    return static_cast<long long>(static_cast<std::uint64_t>(svid) & ~std::uint64_t{0xFFFF});
}

/// "0x" and 16 hexadecimal digits.
std::string svidText(long long svid);

/// Reads 0x with hexadecimal digits, or a decimal number, signed or not; of at most 64 bits.
std::optional<long long> parseSvid(std::string_view text);

/// Kind and position of a point in words: "unit 1", "inlet 1", "circuit 1/2", "socket 1/2/5", "phase 2/3",
/// "sensor 1/1", "group 1". Levels that the id does not use are left out; the key is not looked at.
std::string pointLabel(long long svid);

} // namespace qel::inspect

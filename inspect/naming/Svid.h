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

/// The id of the point that a value's id belongs to: the low 16 bits, the key, are cleared. Reentrant.
constexpr long long pointOf(long long svid) {
    return static_cast<long long>(static_cast<std::uint64_t>(svid) & ~std::uint64_t{0xFFFF});
}

/// "0x" and 16 hexadecimal digits. Reentrant.
std::string svidText(long long svid);

/// Reads a sensor id: 0x with hexadecimal digits or a decimal number, signed or not. Reentrant.
/// @return none if the text is not such a number or has more than 64 bits
std::optional<long long> parseSvid(std::string_view text);

} // namespace qel::inspect

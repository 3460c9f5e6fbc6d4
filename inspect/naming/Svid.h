// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Sensor ids as people write them.
#pragma once

#include <optional>
#include <string_view>

namespace qel::inspect {

/// Reads a sensor id: 0x with hexadecimal digits or a decimal number, signed or not. Reentrant.
/// @return none if the text is not such a number or has more than 64 bits
std::optional<long long> parseSvid(std::string_view text);

} // namespace qel::inspect

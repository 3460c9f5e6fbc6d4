// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Sizes and times on record's command line. All functions are reentrant.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace qel::tools {

/// Reads a number of bytes: "1000000", "500k", "100M", "2G", in powers of 1024.
/// @return none for any other text, for 0 and beyond 2^63
std::optional<std::uint64_t> parseBytes(std::string_view text);

/// Times around an alarm.
struct AlarmMargins {
    std::chrono::milliseconds before;
    std::chrono::milliseconds after;
};

/// Reads minutes: "5" (before and after), "5,15", "0.5,1", up to a day each.
/// @return none for any other text
std::optional<AlarmMargins> parseMargins(std::string_view text);

} // namespace qel::tools

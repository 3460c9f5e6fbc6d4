// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Times as ISO 8601 text in UTC.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qel::tools {

/// Reads "YYYY-MM-DDThh:mm:ssZ", with an optional fraction of one to three digits after the seconds.
/// @return ms since 1970 UTC; nothing for any other text, for a day or time that does not exist and before
/// 1970
std::optional<std::uint64_t> parseTime(std::string_view text);

/// @param time ms since 1970 UTC
/// @return "YYYY-MM-DDThh:mm:ssZ", with three digits of a fraction where the time has one
std::string timeText(std::uint64_t time);

/// Whether a number is a time that people would write down: before the year 10000.
bool isCalendarTime(std::uint64_t time);

/// A time as a region holds it: "-" for 0 (never), the bare number when it is no calendar time.
std::string momentText(std::uint64_t time);

} // namespace qel::tools

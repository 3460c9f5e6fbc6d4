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
/// @return ms since 1970 UTC; nothing for other texts, days and times that do not exist, and times before 1970
std::optional<std::uint64_t> parseTime(std::string_view text);

/// @param time ms since 1970 UTC
/// @return "YYYY-MM-DDThh:mm:ssZ", with a fraction of three digits unless it is 0
std::string timeText(std::uint64_t time);

/// Whether a number can be written as a date: whether it is before the year 10000.
bool isCalendarTime(std::uint64_t time);

/// Text of a time in a region: "-" for 0 (never), the bare number from the year 10000 on.
std::string momentText(std::uint64_t time);

} // namespace qel::tools

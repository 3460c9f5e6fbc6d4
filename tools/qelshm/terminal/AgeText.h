// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Ages and durations as text. All functions are reentrant.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace qel::tools {

/// Computes an age.
/// @param time ms since 1970 UTC
/// @param now  ms since 1970 UTC
/// @return milliseconds from time to now, negative for a time in the future; nothing for 0 (never) and for numbers that
///         are no calendar time
std::optional<std::int64_t> ageOf(std::uint64_t time, std::uint64_t now);

/// Formats an age with its two largest units.
/// @param time ms since 1970 UTC
/// @param now  ms since 1970 UTC
/// @return "0.3 s", "12 s", "5 min 7 s", "3 h 20 min", "12 d 4 h"; "in the future"; "-" where ageOf() gives nothing
std::string ageText(std::uint64_t time, std::uint64_t now);

/// Formats a duration with its largest unit, rounded down, for narrow columns.
/// @param ms milliseconds
/// @return "0s", "59s", "59m", "23h", "12d"
std::string shortDurationText(std::uint64_t ms);

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/RecordBounds.h"

#include "tools/common/Numbers.h"

#include <limits>

namespace qel::tools {

namespace {

/// How many bits a suffix shifts a number by; none if the character is no suffix.
std::optional<unsigned> shiftOf(char suffix) {
    constexpr std::string_view suffixes = "kMGT";
    constexpr unsigned bits = 10;
    auto const index = suffixes.find(suffix);
    return index == std::string_view::npos ? std::nullopt
                                           : std::optional(static_cast<unsigned>(index + 1) * bits);
}

std::optional<std::chrono::milliseconds> minutesIn(std::string_view text) {
    constexpr double most = 1440;
    constexpr double msPerMinute = 60000;
    auto const minutes = parseNumber(text);
    bool const isInRange = minutes && *minutes >= 0.0 && *minutes <= most;
    return isInRange
               ? std::optional(std::chrono::milliseconds(static_cast<std::int64_t>(*minutes * msPerMinute)))
               : std::nullopt;
}

} // namespace

std::optional<std::uint64_t> parseBytes(std::string_view text) {
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    auto const shift = text.empty() ? std::nullopt : shiftOf(text.back());
    auto const number = parseDigits(shift ? text.substr(0, text.size() - 1) : text);
    bool const isInRange = number && *number != 0 && *number <= most >> shift.value_or(0);
    return isInRange ? std::optional(*number << shift.value_or(0)) : std::nullopt;
}

std::optional<AlarmMargins> parseMargins(std::string_view text) {
    auto const comma = text.find(',');
    auto const before = minutesIn(text.substr(0, comma));
    auto const after = comma == std::string_view::npos ? before : minutesIn(text.substr(comma + 1));
    return before && after ? std::optional(AlarmMargins{*before, *after}) : std::nullopt;
}

} // namespace qel::tools

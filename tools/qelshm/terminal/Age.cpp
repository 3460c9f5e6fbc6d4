// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/Age.h"

#include "tools/common/TimeText.h"

#include <array>
#include <cstddef>

namespace qel::tools {

namespace {

struct Unit {
    std::int64_t ms;
    char const* name;
};

constexpr std::array<Unit, 4> units{{{86400000, " d"}, {3600000, " h"}, {60000, " min"}, {1000, " s"}}};

std::string text(std::int64_t count, Unit const& unit) {
    return std::to_string(count) + unit.name;
}

} // namespace

std::optional<std::int64_t> ageOf(std::uint64_t time, std::uint64_t now) {
    if (time == 0 || !isCalendarTime(time) || !isCalendarTime(now)) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(now) - static_cast<std::int64_t>(time);
}

std::string ageText(std::uint64_t time, std::uint64_t now) {
    constexpr std::int64_t tenths = 10000; // ms up to which tenths of a second are shown
    constexpr std::int64_t msPerTenth = 100;
    auto const age = ageOf(time, now);
    if (!age) {
        return "-";
    }
    if (*age < 0) {
        return "in the future";
    }
    if (*age < tenths) {
        return std::to_string(*age / units.back().ms) + '.' +
               std::to_string(*age % units.back().ms / msPerTenth) + units.back().name;
    }
    std::size_t largest = 0;
    while (*age < units.at(largest).ms) {
        ++largest;
    }
    auto result = text(*age / units.at(largest).ms, units.at(largest));
    if (largest + 1 < units.size()) {
        auto const& next = units.at(largest + 1);
        result += ' ' + text(*age % units.at(largest).ms / next.ms, next);
    }
    return result;
}

} // namespace qel::tools

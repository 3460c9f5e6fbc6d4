// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/AgeText.h"

#include "tools/common/TimeText.h"

#include <array>
#include <cstddef>

namespace qel::tools {

namespace {

struct Unit {
    std::int64_t ms;
    char const* name;
    char letter;
};

constexpr std::array<Unit, 4> units{
    {{86400000, " d", 'd'}, {3600000, " h", 'h'}, {60000, " min", 'm'}, {1000, " s", 's'}}};

/// Index of the largest unit that fits, the last one if none does.
std::size_t largestIn(std::int64_t ms) {
    std::size_t unit = 0;
    while (unit + 1 < units.size() && ms < units.at(unit).ms) {
        ++unit;
    }
    return unit;
}

std::string text(std::int64_t ms, Unit const& unit) {
    return std::to_string(ms / unit.ms) + unit.name;
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
    auto const& second = units.back();
    if (*age < tenths) {
        return std::to_string(*age / second.ms) + '.' + std::to_string(*age % second.ms / msPerTenth) +
               second.name;
    }
    auto const largest = largestIn(*age);
    auto result = text(*age, units.at(largest));
    if (largest + 1 < units.size()) {
        result += ' ' + text(*age % units.at(largest).ms, units.at(largest + 1));
    }
    return result;
}

std::string shortDurationText(std::uint64_t ms) {
    auto const duration = static_cast<std::int64_t>(ms);
    auto const& unit = units.at(largestIn(duration));
    return std::to_string(duration / unit.ms) + unit.letter;
}

} // namespace qel::tools

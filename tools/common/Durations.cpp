// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/Durations.h"

#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <system_error>

namespace qel::tools {

namespace {

struct Unit {
    std::string_view name;
    std::int64_t ms;
};

constexpr std::array<Unit, 6> units{
    {{"", 1000}, {"ms", 1}, {"s", 1000}, {"m", 60000}, {"h", 3600000}, {"d", 86400000}}};

constexpr double longestMs = 1000.0 * 366 * 86400000;

} // namespace

std::optional<std::chrono::milliseconds> parseDuration(std::string_view text) {
    double number = 0.0;
    auto const* const end = text.data() + text.size();
    auto const parsed = std::from_chars(text.data(), end, number, std::chars_format::fixed);
    std::string_view const rest(parsed.ptr, static_cast<std::size_t>(end - parsed.ptr));
    auto const* const unit =
        std::find_if(units.begin(), units.end(), [&](Unit const& each) { return each.name == rest; });
    if (parsed.ec != std::errc() || unit == units.end() || !std::isfinite(number) || std::signbit(number)) {
        return std::nullopt;
    }
    double const ms = number * static_cast<double>(unit->ms);
    if (ms > longestMs) {
        return std::nullopt;
    }
    return std::chrono::milliseconds(static_cast<std::int64_t>(ms));
}

std::string secondsText(std::chrono::milliseconds time) {
    return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(time).count()) + " s";
}

CLI::Validator durationUpTo(std::chrono::milliseconds longest) {
    auto const problem = [longest](std::string& text) {
        auto const duration = parseDuration(text);
        if (duration && *duration <= longest) {
            return std::string();
        }
        return '"' + text + "\" is not a duration of up to " + secondsText(longest) +
               "; durations are like 10, 10s, 5m, 2h";
    };
    return {problem, "", "duration"};
}

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/plot/Axis.h"

#include "tools/common/TimeText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace qel::plot {

namespace {

constexpr std::uint64_t second = 1000; // ms
constexpr std::uint64_t minute = 60 * second;
constexpr std::uint64_t hour = 60 * minute;
constexpr std::uint64_t day = 24 * hour;

constexpr std::array<std::uint64_t, 28> timeSteps{
    1,           2,        5,          10,         20,          50,          100,
    200,         500,      second,     2 * second, 5 * second,  10 * second, 15 * second,
    30 * second, minute,   2 * minute, 5 * minute, 10 * minute, 15 * minute, 30 * minute,
    hour,        2 * hour, 3 * hour,   6 * hour,   12 * hour,   day,         2 * day};

std::string tickText(std::uint64_t time, std::uint64_t step) {
    constexpr std::size_t dayStart = 5; // "1970-" before
    constexpr std::size_t clockStart = 11;
    if (!tools::isCalendarTime(time)) {
        return std::to_string(time);
    }
    auto const text = tools::timeText(time);
    if (step >= day) {
        return text.substr(dayStart, 5);
    }
    auto const clock = text.substr(clockStart, text.size() - clockStart - 1);
    return step >= minute ? clock.substr(0, 5) : clock;
}

} // namespace

double roundStep(double step) {
    constexpr double slack = 1e-9;
    auto const power = std::pow(10.0, std::floor(std::log10(step)));
    for (double const factor : {1.0, 2.0, 5.0}) {
        if (step <= factor * power * (1.0 + slack)) {
            return factor * power;
        }
    }
    return 10.0 * power;
}

std::vector<double> NumberAxis::ticks() const {
    std::vector<double> ticks;
    auto const count = std::lround((high - low) / step);
    for (long index = 0; index <= count; ++index) {
        auto const tick = low + static_cast<double>(index) * step;
        ticks.push_back(std::abs(tick) < step / 2 ? 0.0 : tick);
    }
    return ticks;
}

std::string NumberAxis::text(double tick) const {
    constexpr double widest = 1e9;
    constexpr int mostDecimals = 9;
    constexpr int digits = 4;
    auto const decimals = static_cast<int>(std::max(0.0, -std::floor(std::log10(step) + 1e-9)));
    bool const isPlain = std::abs(tick) < widest && decimals <= mostDecimals;
    std::array<char, 64> text{};
    auto* const end = text.data() + text.size();
    auto const result = isPlain ? std::to_chars(text.data(), end, tick, std::chars_format::fixed, decimals)
                                : std::to_chars(text.data(), end, tick, std::chars_format::general, digits);
    return {text.data(), result.ptr};
}

NumberAxis numberAxis(double least, double greatest, std::size_t most) {
    constexpr double part = 0.05; // of a number without extent
    constexpr double leastMargin = 1e-12;
    auto low = std::min(least, greatest);
    auto high = std::max(least, greatest);
    constexpr double largest = 1e300; // sums of what is drawn stay finite
    low = std::clamp(low, -largest, largest);
    high = std::clamp(high, -largest, largest);
    auto const size = std::max(std::abs(low), std::abs(high));
    if (high - low <= size * 1e-9) {
        auto const margin = std::max(size * part, size == 0.0 ? 1.0 : leastMargin);
        low -= margin;
        high += margin;
    }
    auto const step = roundStep((high - low) / static_cast<double>(std::max<std::size_t>(most, 1)));
    return {std::floor(low / step + 1e-9) * step, std::ceil(high / step - 1e-9) * step, step};
}

std::vector<TimeTick> timeTicks(std::uint64_t from, std::uint64_t until, std::size_t most) {
    auto const length = until - from;
    auto const wanted = std::max<std::size_t>(most, 1);
    auto step = timeSteps.back();
    auto const* const found = std::find_if(timeSteps.begin(), timeSteps.end(), [&](std::uint64_t candidate) {
        return length / candidate <= wanted;
    });
    if (found != timeSteps.end()) {
        step = *found;
    } else if (length / step > wanted) {
        step = (length / wanted / day + 1) * day;
    }
    std::vector<TimeTick> ticks;
    auto const first = from % step == 0 ? from : from - from % step + step;
    for (auto time = first; time >= from && time <= until; time += step) {
        ticks.push_back({time, tickText(time, step)});
        if (until - time < step) {
            break;
        }
    }
    return ticks;
}

} // namespace qel::plot

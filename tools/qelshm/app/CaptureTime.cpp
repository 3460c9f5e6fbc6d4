// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/CaptureTime.h"

#include "tools/common/TimeText.h"

#include <charconv>

namespace qel::tools {

namespace {

/// Milliseconds of a unit; 0 for any other letter.
std::uint64_t unitOf(char letter) {
    constexpr std::uint64_t second = 1000;
    switch (letter) {
    case 's':
        return second;
    case 'm':
        return second * 60;
    case 'h':
        return second * 3600;
    case 'd':
        return second * 86400;
    default:
        return 0;
    }
}

/// "90s"; none for any other text.
std::optional<std::uint64_t> parseDuration(std::string_view text) {
    constexpr std::uint64_t longest = 1000000000; // of any unit, so that no product overflows
    if (text.empty() || unitOf(text.back()) == 0) {
        return std::nullopt;
    }
    std::uint64_t number = 0;
    auto const* const end = text.data() + text.size() - 1;
    auto const result = std::from_chars(text.data(), end, number);
    bool const isNumber = result.ec == std::errc() && result.ptr == end && number <= longest;
    return isNumber ? std::optional(number * unitOf(text.back())) : std::nullopt;
}

} // namespace

std::optional<inspect::CaptureMoment> parseCaptureTime(std::string_view text) {
    using From = inspect::CaptureMoment::From;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        auto const duration = parseDuration(text.substr(1));
        auto const from = text.front() == '-' ? From::End : From::Start;
        return duration ? std::optional(inspect::CaptureMoment{from, *duration}) : std::nullopt;
    }
    auto const time = parseTime(text);
    return time ? std::optional(inspect::CaptureMoment{From::Clock, *time}) : std::nullopt;
}

std::string captureTimeProblem(std::string const& text) {
    return parseCaptureTime(text)
               ? ""
               : '"' + text +
                     "\" is no moment of a capture; expected for example 2023-11-14T22:13:20Z, +5m "
                     "(from its start) or -10m (before its end); units: s, m, h, d";
}

std::string inPipeText(std::string const& file) {
    return file + " is a capture in a pipe; save it to a file first";
}

std::string outsideText(inspect::CaptureTimeline const& timeline, std::string const& text) {
    return text + " is outside the capture " + timeline.path() + ", which lasts from " +
           momentText(timeline.first()) + " to " + momentText(timeline.last());
}

std::uint64_t captureTime(inspect::CaptureTimeline const& timeline, std::string const& text) {
    auto const moment = parseCaptureTime(text);
    auto const time = moment ? timeline.timeOf(*moment) : std::nullopt;
    if (!time) {
        throw CaptureTimeError(outsideText(timeline, text));
    }
    return *time;
}

} // namespace qel::tools

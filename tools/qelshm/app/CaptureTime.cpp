// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/CaptureTime.h"

#include "tools/common/Durations.h"
#include "tools/common/TimeText.h"

#include <cctype>

namespace qel::tools {

namespace {

/// "90s"; none for any other text, and for a number without a unit.
std::optional<std::uint64_t> msOf(std::string_view text) {
    bool const hasUnit = !text.empty() && std::isalpha(static_cast<unsigned char>(text.back())) != 0;
    auto const duration = hasUnit ? parseDuration(text) : std::nullopt;
    return duration ? std::optional(static_cast<std::uint64_t>(duration->count())) : std::nullopt;
}

} // namespace

std::optional<inspect::CaptureMoment> parseCaptureTime(std::string_view text) {
    using From = inspect::CaptureMoment::From;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        auto const duration = msOf(text.substr(1));
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
                     "(from its start) or -10m (before its end); units: ms, s, m, h, d";
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

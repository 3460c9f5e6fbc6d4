// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/CaptureTimeline.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace qel::inspect {

namespace {

std::size_t bitsOf(std::uint64_t number) {
    std::size_t bits = 0;
    for (; number != 0; number >>= 1U) {
        ++bits;
    }
    return bits;
}

} // namespace

CaptureTimeline::CaptureTimeline(std::string path)
    : path_(std::move(path)),
      file_(std::make_shared<InputFile const>(path_)) {
    CaptureReader reader(path_, file_);
    try {
        std::uint64_t before = 0;
        while (reader.advance()) {
            if (reader.samples() == 1) {
                first_ = reader.moment();
            } else {
                note(reader.time() - before);
            }
            before = reader.time();
            last_ = reader.moment();
        }
    } catch (CaptureError const& error) {
        damage_ = error.what();
    }
    samples_ = reader.samples();
    lastImage_ = reader.region().image();
    if (samples_ == 0) {
        throw CaptureError(damage_.empty() ? "cannot read " + path_ + ": the capture holds no sample"
                                           : damage_);
    }
}

void CaptureTimeline::note(std::uint64_t elapsed) {
    auto& alike = intervals_.at(bitsOf(elapsed));
    ++alike.count;
    alike.sum += static_cast<double>(elapsed);
}

std::uint64_t CaptureTimeline::interval() const {
    auto const& usual = *std::max_element(
        intervals_.begin(), intervals_.end(),
        [](Intervals const& left, Intervals const& right) { return left.count < right.count; });
    constexpr double longest = 9e15; // exact as a double
    return usual.count == 0
               ? 0
               : static_cast<std::uint64_t>(std::min(usual.sum / static_cast<double>(usual.count), longest));
}

std::uint64_t CaptureTimeline::longestPause() const {
    constexpr std::uint64_t least = 1000; // ms
    constexpr std::uint64_t intervals = 4;
    return std::max(interval() * intervals, least);
}

std::optional<std::uint64_t> CaptureTimeline::timeOf(CaptureMoment const& moment) const {
    auto const length = last_ - first_;
    switch (moment.from) {
    case CaptureMoment::From::Clock:
        return moment.ms >= first_ && moment.ms <= last_ ? std::optional(moment.ms) : std::nullopt;
    case CaptureMoment::From::Start:
        return moment.ms <= length ? std::optional(first_ + moment.ms) : std::nullopt;
    case CaptureMoment::From::End:
        return moment.ms <= length ? std::optional(last_ - moment.ms) : std::nullopt;
    }
    return std::nullopt;
}

std::uint64_t CaptureTimeline::unboundedTimeOf(CaptureMoment const& moment) const {
    switch (moment.from) {
    case CaptureMoment::From::Clock:
        return moment.ms;
    case CaptureMoment::From::Start:
        return first_ + std::min(moment.ms, std::numeric_limits<std::uint64_t>::max() - first_);
    case CaptureMoment::From::End:
        return last_ - std::min(moment.ms, last_);
    }
    return last_;
}

CaptureSample CaptureTimeline::at(std::uint64_t time) const {
    if (time >= last_) {
        return {last_, lastImage_};
    }
    CaptureSample sample;
    forEachSample(*this, time, time, [&](CaptureReader const& reader, auto /*next*/) {
        sample = {reader.moment(), reader.region().image()};
    });
    return sample;
}

void forEachSample(CaptureTimeline const& timeline, std::uint64_t from, std::uint64_t until,
                   SampleVisit const& visit) {
    anySample(timeline, from, until, [&](CaptureReader const& reader, std::optional<std::uint64_t> next) {
        visit(reader, next);
        return false;
    });
}

bool anySample(
    CaptureTimeline const& timeline, std::uint64_t from, std::uint64_t until,
    std::function<bool(CaptureReader const& reader, std::optional<std::uint64_t> next)> const& isWanted) {
    auto reader = timeline.reader();
    auto const nextUpTo = [&](std::uint64_t limit) {
        auto const next = reader.samples() < timeline.samples() ? reader.nextMoment() : std::nullopt;
        return next && *next <= limit ? next : std::nullopt;
    };
    while (nextUpTo(from)) {
        reader.advance();
    }
    auto next = nextUpTo(until);
    if (reader.samples() != 0 && isWanted(reader, next)) {
        return true;
    }
    while (next) {
        reader.advance();
        next = nextUpTo(until);
        if (isWanted(reader, next)) {
            return true;
        }
    }
    return false;
}

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/CaptureTimeline.h"

#include <algorithm>
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

CaptureTimeline::CaptureTimeline(std::string path) : path_(std::move(path)) {
    CaptureReader reader(path_);
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
    if (samples_ == 0) {
        throw CaptureError(damage_.empty() ? "cannot read " + path_ + ": the capture holds no sample" : damage_);
    }
}

void CaptureTimeline::note(std::uint64_t elapsed) {
    auto& alike = intervals_.at(bitsOf(elapsed));
    ++alike.count;
    alike.sum += static_cast<double>(elapsed);
}

std::uint64_t CaptureTimeline::interval() const {
    auto const& usual =
        *std::max_element(intervals_.begin(), intervals_.end(), [](Intervals const& left, Intervals const& right) {
            return left.count < right.count;
        });
    constexpr double longest = 9e15; // exact as a double
    return usual.count == 0
               ? 0
               : static_cast<std::uint64_t>(std::min(usual.sum / static_cast<double>(usual.count), longest));
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

CaptureSample CaptureTimeline::at(std::uint64_t time) const {
    CaptureReader reader(path_);
    for (std::uint64_t left = samples_; left != 0; --left) {
        auto const next = reader.nextMoment();
        if (!next || *next > time) {
            break;
        }
        reader.advance();
    }
    return {reader.moment(), reader.region().image()};
}

} // namespace qel::inspect

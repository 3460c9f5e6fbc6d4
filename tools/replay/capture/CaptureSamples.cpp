// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/capture/CaptureSamples.h"

#include "tools/replay/capture/SampleImage.h"

#include <utility>

namespace qel::tools {

CaptureSamples::CaptureSamples(SampleSelection selection)
    : selection_(std::move(selection)),
      reader_(std::make_unique<inspect::CaptureReader>(selection_.file)) {
    readNext();
    firstTime_ = next_ ? next_->time : 0;
}

std::optional<std::uint64_t> CaptureSamples::due() const {
    return next_ ? std::optional(dueOf(*next_)) : std::nullopt;
}

std::uint64_t CaptureSamples::dueOf(inspect::CaptureSample const& sample) const {
    return sample.time - firstTime_ + shift_;
}

ReplaySample CaptureSamples::next() {
    auto const sample = next_.value();
    auto const mended = withoutCircles(sample.image);
    ReplaySample result{
        {reader_->startTime() + sample.time + shift_, dueOf(sample)}, shift_, mended.image, mended.cut};
    lastStep_ = sample.time > firstTime_ ? sample.time - lastTime_ : 0;
    lastTime_ = sample.time;
    ++taken_;
    readNext();
    return result;
}

void CaptureSamples::readNext() {
    next_.reset();
    if (selection_.limit && taken_ == *selection_.limit) {
        isStopped_ = selection_.isEndless || selection_.isCutShort;
        return;
    }
    if (reader_->samples() == selection_.samples) {
        if (!selection_.isEndless) {
            return;
        }
        startOver();
    }
    next_ = reader_->next();
}

// A capture of one moment has no time step; it is repeated every second.
void CaptureSamples::startOver() {
    constexpr std::uint64_t second = 1000;
    shift_ += lastTime_ - firstTime_ + (lastStep_ == 0 ? second : lastStep_);
    reader_ = std::make_unique<inspect::CaptureReader>(selection_.file);
}

} // namespace qel::tools

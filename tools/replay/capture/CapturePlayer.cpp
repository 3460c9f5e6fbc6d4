// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/capture/CapturePlayer.h"

#include "inspect/image/PointTree.h"
#include "states/QelStateLedThread.h"

#include <utility>

namespace qel::tools {

CapturePlayer::CapturePlayer(Parts parts, ReplayLog& log, std::function<void()> onStructureChanged)
    : parts_(std::move(parts)),
      log_(log),
      onStructureChanged_(std::move(onStructureChanged)),
      reader_(parts_.file) {
    readNext();
}

CapturePlayer::~CapturePlayer() {
    if (led_) {
        led_->join();
    }
}

void CapturePlayer::begin() {
    region_ = std::make_unique<CapturedRegion>();
    led_ = std::make_unique<shm::QelStateLedThread>();
    led_->start();
    auto const first = next_.value();
    firstTime_ = first.time;
    take(first);
    inspect::PointTree const tree(first.image);
    log_.started(tree.nodes().size(), tree.values().size(), 1, parts_.samples);
    followGlobalState(first);
}

std::optional<std::uint64_t> CapturePlayer::due() const {
    return next_ ? std::optional(next_->time - firstTime_) : std::nullopt;
}

void CapturePlayer::step() {
    auto const sample = next_.value();
    if (take(sample).isStructureChanged) {
        inspect::PointTree const tree(sample.image);
        log_.changed(reader_.startTime() + sample.time, tree.nodes().size(), tree.values().size());
        onStructureChanged_();
    }
    followGlobalState(sample);
}

RegionChange CapturePlayer::take(inspect::CaptureSample const& sample) {
    auto const change = region_->store(sample.image);
    isActive_ = sample.image.isActive();
    log_.countStep();
    log_.countUpdates(change.values);
    readNext();
    return change;
}

void CapturePlayer::readNext() {
    next_ = reader_.samples() < parts_.samples ? reader_.next() : std::nullopt;
}

// An inactive region has no global state.
void CapturePlayer::followGlobalState(inspect::CaptureSample const& sample) {
    auto const state = sample.image.root().state;
    if (!isActive_ || state == globalState_) {
        return;
    }
    log_.globalState(reader_.startTime() + sample.time, globalState_, state);
    led_->request(state);
    globalState_ = state;
}

} // namespace qel::tools

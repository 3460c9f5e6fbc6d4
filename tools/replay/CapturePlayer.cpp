// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/CapturePlayer.h"

#include "tools/replay/capture/SampleImage.h"

#include "inspect/image/PointTree.h"
#include "states/QelStateLedThread.h"

#include <utility>

namespace qel::tools {

CapturePlayer::CapturePlayer(Parts parts, ReplayLog& log, std::function<void()> onStructureChanged)
    : parts_(std::move(parts)),
      log_(log),
      onStructureChanged_(std::move(onStructureChanged)),
      samples_(parts_.samples) {}

CapturePlayer::~CapturePlayer() {
    if (led_) {
        led_->join();
    }
}

void CapturePlayer::begin() {
    region_ = std::make_unique<CapturedRegion>();
    led_ = std::make_unique<shm::QelStateLedThread>();
    led_->start();
    parts_.stamps.begin();
    auto const first = samples_.next();
    take(first);
    inspect::PointTree const tree(first.image);
    log_.started(tree.nodes().size(), tree.values().size(), 1, parts_.samples.samples);
    followGlobalState(first);
}

std::optional<std::uint64_t> CapturePlayer::due() const {
    return samples_.due();
}

void CapturePlayer::step() {
    auto const sample = samples_.next();
    if (take(sample).isStructureChanged) {
        inspect::PointTree const tree(sample.image);
        log_.changed(parts_.stamps.of(sample.moment), tree.nodes().size(), tree.values().size());
        onStructureChanged_();
    }
    followGlobalState(sample);
}

std::string CapturePlayer::endReason() const {
    return samples_.isStopped() ? log_.stoppedEarly(std::nullopt) : log_.allReplayed();
}

RegionChange CapturePlayer::take(ReplaySample const& sample) {
    if (sample.cut != cut_) {
        cut_ = sample.cut;
        log_.cut(parts_.stamps.of(sample.moment), cut_);
    }
    auto const change = region_->store(stamped(sample));
    isActive_ = sample.image.isActive();
    log_.countStep();
    log_.countUpdates(change.values);
    return change;
}

inspect::Image CapturePlayer::stamped(ReplaySample const& sample) const {
    if (sample.shift == 0 && !parts_.stamps.isPresent()) {
        return sample.image;
    }
    return restamped(sample.image, [&](std::uint64_t time) {
        return parts_.stamps.of(time + sample.shift, sample.moment);
    });
}

// An inactive region has no global state.
void CapturePlayer::followGlobalState(ReplaySample const& sample) {
    auto const state = sample.image.root().state;
    if (!isActive_ || state == globalState_) {
        return;
    }
    log_.globalState(parts_.stamps.of(sample.moment), globalState_, state);
    led_->request(state);
    globalState_ = state;
}

} // namespace qel::tools

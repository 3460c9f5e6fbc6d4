#include "tools/replay/RecordPlayer.h"

#include "inspect/PointTree.h"
#include "states/QelStateLedThread.h"

#include <utility>

namespace qel::tools {

RecordPlayer::RecordPlayer(Parts parts, ReplayLog& log, std::function<void()> onStructureChanged)
    : parts_(std::move(parts)),
      log_(log),
      onStructureChanged_(std::move(onStructureChanged)),
      reader_(parts_.file) {
    readNext();
}

RecordPlayer::~RecordPlayer() {
    if (led_) {
        led_->join();
    }
}

void RecordPlayer::begin() {
    region_ = std::make_unique<RecordedRegion>();
    led_ = std::make_unique<shm::QelStateLedThread>();
    led_->start();
    auto const first = next_.value();
    firstTime_ = first.time;
    take(first);
    inspect::PointTree const tree(first.image);
    log_.started(tree.nodes().size(), tree.values().size(), 1, parts_.samples);
    followGlobalState(first);
}

std::optional<std::uint64_t> RecordPlayer::due() const {
    return next_ ? std::optional(next_->time - firstTime_) : std::nullopt;
}

void RecordPlayer::step() {
    auto const sample = next_.value();
    if (take(sample).isStructureChanged) {
        inspect::PointTree const tree(sample.image);
        log_.changed(reader_.startTime() + sample.time, tree.nodes().size(), tree.values().size());
        onStructureChanged_();
    }
    followGlobalState(sample);
}

RegionChange RecordPlayer::take(inspect::RecordedSample const& sample) {
    auto const change = region_->store(sample.image);
    isActive_ = sample.image.isActive();
    log_.countStep();
    log_.countUpdates(change.values);
    readNext();
    return change;
}

void RecordPlayer::readNext() {
    next_ = reader_.samples() < parts_.samples ? reader_.next() : std::nullopt;
}

// An inactive region has no global state.
void RecordPlayer::followGlobalState(inspect::RecordedSample const& sample) {
    auto const state = sample.image.root().state;
    if (!isActive_ || state == globalState_) {
        return;
    }
    log_.globalState(reader_.startTime() + sample.time, globalState_, state);
    led_->request(state);
    globalState_ = state;
}

} // namespace qel::tools

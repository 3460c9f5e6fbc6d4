// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/ValueTracker.h"

#include "tools/qelshm/watch/SameNumber.h"

#include "inspect/naming/StateClass.h"

namespace qel::watch {

namespace {

std::optional<std::uint64_t> since(std::optional<std::uint64_t> moment, std::uint64_t ticks) {
    return moment ? std::optional(ticks - *moment) : std::nullopt;
}

} // namespace

void ValueTracker::restart(Track& track, UnitValue const& value, std::uint64_t ticks) const {
    track.svid = value.svid;
    track.changed.reset();
    track.delivered.reset();
    track.seen = ticks;
    track.statistics = ValueStatistics(ticks);
    track.histories.assign(bucketMs_ == 0 ? 0 : 1, Histories());
}

/// @return whether number or state has changed
bool ValueTracker::compare(Track& track, shm::record::QelShmMVal const& slot, std::uint64_t ticks) {
    bool const isChanged = !isSameNumber(track.number, slot.value) || track.state != slot.state;
    if (isChanged) {
        track.changed = ticks;
    }
    if (isChanged || track.at != slot.at) {
        track.delivered = ticks;
        track.statistics.addDelivery();
    }
    return isChanged;
}

std::vector<ValueChange> ValueTracker::update(UnitStructure const& structure, inspect::Image const& image,
                                              std::uint64_t ticks) {
    std::vector<ValueChange> changes;
    auto const before = round_++;
    for (std::uint32_t index = 0; index < structure.values().size(); ++index) {
        auto const& value = structure.values()[index];
        auto const& slot = image.region().values[value.pos];
        auto& track = tracks_.at(value.pos);
        auto const stateBefore = track.state;
        if (isForgotten_ || track.round != before || track.svid != value.svid) {
            restart(track, value, ticks);
        } else if (compare(track, slot, ticks)) {
            changes.push_back({index, stateBefore});
        }
        track.number = slot.value;
        track.at = slot.at;
        track.state = slot.state;
        track.round = round_;
        if (!track.histories.empty() && inspect::hasNumber(slot.state) && slot.at != 0) {
            track.histories.front().add(bucket(ticks), slot.value);
            track.statistics.addNumber(slot.value);
        }
    }
    isForgotten_ = false;
    return changes;
}

void ValueTracker::restartStatistics(std::uint64_t ticks) {
    for (auto& track : tracks_) {
        track.statistics = ValueStatistics(ticks);
    }
}

std::optional<std::uint64_t> ValueTracker::sinceChange(std::uint32_t pos, std::uint64_t ticks) const {
    return since(tracks_.at(pos).changed, ticks);
}

std::optional<std::uint64_t> ValueTracker::sinceDelivery(std::uint32_t pos, std::uint64_t ticks) const {
    return since(tracks_.at(pos).delivered, ticks);
}

} // namespace qel::watch

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/ValueTracker.h"

#include "inspect/naming/StateClass.h"

#include <cmath>

namespace qel::watch {

namespace {

bool isSameNumber(double left, double right) {
    return left == right || (std::isnan(left) && std::isnan(right));
}

/// False while there is no value yet, and for a number that is no state.
bool hasNumber(eStatus_Bits state) {
    auto const kind = inspect::classOf(state);
    return kind != inspect::StateClass::NoState && kind != inspect::StateClass::NoValue;
}

std::optional<std::uint64_t> since(std::optional<std::uint64_t> moment, std::uint64_t ticks) {
    return moment ? std::optional(ticks - *moment) : std::nullopt;
}

} // namespace

void ValueTracker::restart(Track& track, UnitValue const& value) const {
    track.svid = value.svid;
    track.changed.reset();
    track.delivered.reset();
    track.history = bucketMs_ == 0 ? nullptr : std::make_unique<History>();
}

std::vector<ValueChange> ValueTracker::update(UnitStructure const& structure, inspect::Image const& image,
                                              std::uint64_t ticks) {
    std::vector<ValueChange> changes;
    auto const before = round_++;
    for (std::uint32_t index = 0; index < structure.values().size(); ++index) {
        auto const& value = structure.values()[index];
        auto const& slot = image.region().values[value.pos];
        auto& track = tracks_.at(value.pos);
        if (track.round != before || track.svid != value.svid || before == 0) {
            restart(track, value);
        } else {
            if (!isSameNumber(track.number, slot.value) || track.state != slot.state) {
                changes.push_back({index, track.state});
                track.changed = ticks;
            }
            if (track.at != slot.at || track.changed == ticks) {
                track.delivered = ticks;
            }
        }
        track.number = slot.value;
        track.at = slot.at;
        track.state = slot.state;
        track.round = round_;
        if (track.history && hasNumber(slot.state)) {
            track.history->add(bucket(ticks), slot.value);
        }
    }
    return changes;
}

std::optional<std::uint64_t> ValueTracker::sinceChange(std::uint32_t pos, std::uint64_t ticks) const {
    return since(tracks_.at(pos).changed, ticks);
}

std::optional<std::uint64_t> ValueTracker::sinceDelivery(std::uint32_t pos, std::uint64_t ticks) const {
    return since(tracks_.at(pos).delivered, ticks);
}

} // namespace qel::watch

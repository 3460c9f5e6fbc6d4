// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchedUnit.h"

#include "format/StateName.h"
#include "inspect/image/RegionStatus.h"

#include <algorithm>
#include <utility>

namespace qel::watch {

namespace {

constexpr std::uint64_t shortestBucketMs = 2000; // with History::length, three minutes

std::string contentText(UnitStructure const& structure) {
    return std::to_string(structure.points().size()) + " points, " +
           std::to_string(structure.values().size()) + " values";
}

} // namespace

tools::Style eventStyle(eStatus_Bits state) {
    auto const style = tools::stateStyle(state);
    return style == tools::Style::Faint ? tools::Style::Plain : style;
}

WatchedUnit::WatchedUnit(WatchedNames names, std::chrono::milliseconds interval)
    : structure_(std::move(names)),
      tracker_(std::max(shortestBucketMs, static_cast<std::uint64_t>(interval.count()))) {}

void WatchedUnit::note(std::string text, tools::Style style) {
    events_.add({snapshot_.now, std::move(text), style});
}

/// Another writer's deliveries say nothing about the former one's.
void WatchedUnit::beginObject() {
    reattached_ = snapshot_.ticks;
    delivered_.reset();
    live_.reset();
    tracker_.forget();
    note("new shared-memory object opened: the writer has started anew", tools::Style::Busy);
}

void WatchedUnit::noteCondition(inspect::Condition before, eStatus_Bits stateBefore) {
    if (isBegun_ && status_.condition != before) {
        note(std::string("region ") + inspect::conditionName(before) + " => " +
                 inspect::conditionName(status_.condition),
             isLive() ? tools::Style::Good : tools::Style::Alarm);
    } else if (isBegun_ && isLive() && status_.globalState != stateBefore) {
        note("unit: " + std::string(shm::stateName(stateBefore)) + " => " +
                 std::string(shm::stateName(status_.globalState)),
             eventStyle(status_.globalState));
    }
}

void WatchedUnit::noteStates(std::vector<ValueChange> const& changes) {
    for (auto const& change : changes) {
        auto const& value = structure_.values()[change.value];
        auto const state = stateOf(value);
        if (state != change.before) {
            note(value.path + ": " + std::string(shm::stateName(change.before)) + " => " +
                     std::string(shm::stateName(state)),
                 eventStyle(state));
        }
    }
}

std::vector<ValueChange> WatchedUnit::update(Snapshot const& snapshot) {
    bool const wasLive = isLive();
    auto const before = status_;
    bool const isOtherObject = isBegun_ && snapshot.objects != snapshot_.objects && snapshot_.objects != 0;
    snapshot_ = snapshot;
    status_ = inspect::regionStatus(snapshot.source, snapshot.image, snapshot.now, std::nullopt);
    if (isOtherObject) {
        beginObject();
    }
    noteCondition(before.condition, before.globalState);
    isBegun_ = true;
    bool const isChanged = structure_.update(isLive() ? snapshot.image : inspect::Image());
    if (isChanged && wasLive && isLive() && !isOtherObject) {
        ++structureChanges_;
        note("structure changed: " + contentText(structure_), tools::Style::Plain);
    }
    if (isLive()) {
        live_ = live_.value_or(snapshot.ticks);
    }
    auto changes = tracker_.update(structure_, snapshot.image, snapshot.ticks);
    auto const& values = structure_.values();
    if (std::any_of(values.begin(), values.end(), [&](UnitValue const& value) {
            return tracker_.sinceDelivery(value.pos, snapshot.ticks) == std::uint64_t{0};
        })) {
        delivered_ = snapshot.ticks;
    }
    newest_ = newestDelivery();
    noteStates(changes);
    return changes;
}

/// Times ahead of the clock tell nothing.
std::uint64_t WatchedUnit::newestDelivery() const {
    std::uint64_t newest = 0;
    for (auto const& value : structure_.values()) {
        if (auto const at = record(value).at; !inspect::isAhead(at, snapshot_.now)) {
            newest = std::max(newest, at);
        }
    }
    return newest;
}

shm::record::QelShmMVal const& WatchedUnit::record(UnitValue const& value) const {
    return snapshot_.image.region().values[value.pos];
}

eStatus_Bits WatchedUnit::stateOf(UnitPoint const& point) const {
    return snapshot_.image.region().points[point.pos].state;
}

ValueAge WatchedUnit::ageOf(UnitValue const& value) const {
    auto const at = record(value).at;
    if (at == 0) {
        return {0, true, false};
    }
    if (auto const seen = tracker_.sinceDelivery(value.pos, snapshot_.ticks)) {
        return {*seen, false, false};
    }
    auto const behind = newest_ - std::min(newest_, at);
    return {std::max(tracker_.sinceSeen(value.pos, snapshot_.ticks), behind), false, true};
}

bool WatchedUnit::isStale(UnitValue const& value, Freshness const& freshness) const {
    auto const age = ageOf(value);
    return !age.isNever && stateOf(value) != eStatus_Lost &&
           age.ms > static_cast<std::uint64_t>(freshness.value.count());
}

std::optional<std::uint64_t> WatchedUnit::sinceDelivery() const {
    return delivered_ ? std::optional(snapshot_.ticks - *delivered_) : std::nullopt;
}

std::optional<std::uint64_t> WatchedUnit::sinceReattached() const {
    return reattached_ ? std::optional(snapshot_.ticks - *reattached_) : std::nullopt;
}

} // namespace qel::watch

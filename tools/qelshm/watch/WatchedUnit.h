// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The unit that is watched: as it is now, and what was seen of it until now.
#pragma once

#include "tools/qelshm/watch/EventLog.h"
#include "tools/qelshm/watch/SnapshotSource.h"
#include "tools/qelshm/watch/UnitStructure.h"
#include "tools/qelshm/watch/ValueTracker.h"
#include "tools/qelshm/watch/WatchedNames.h"

#include "domain/eStatus_Bits.h"
#include "inspect/image/RegionStatus.h"
#include "inspect/why/ValueSummary.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qel::watch {

/// When a value, or all of the unit, counts as not delivered any more. Reentrant.
struct Freshness {
    std::chrono::milliseconds value{inspect::STALE_AFTER};
    std::chrono::milliseconds unit{std::chrono::seconds(10)}; ///< nothing was delivered at all
};

/// The time since the last delivery of a value. Reentrant.
struct ValueAge {
    std::uint64_t ms; ///< 0 for never
    bool isNever;     ///< the value was never delivered, so it has no number
    bool
        isAtLeast; ///< no delivery was seen: it is the time since the value was seen first, or the time by which the
                   ///< newest delivery of all is newer, by the writer's clock
};

/// Takes snapshots and keeps what they have changed: deliveries, numbers, events. Copies are independent of each other.
/// Memory: see ValueTracker.
///
/// Threads: reentrant.
class WatchedUnit {
public:
    /// @param names    the selection
    /// @param interval time between two snapshots; determines how long a bucket of the histories lasts
    WatchedUnit(WatchedNames names, std::chrono::milliseconds interval);

    /// Takes the next snapshot.
    /// @return the values that have changed
    std::vector<ValueChange> update(Snapshot const& snapshot);

    /// Begins minimum, maximum, mean and rate of all values anew.
    void restartStatistics() { tracker_.restartStatistics(snapshot_.ticks); }

    /// Whether there is content to show.
    bool isLive() const { return status_.condition == inspect::Condition::Active; }

    Snapshot const& snapshot() const { return snapshot_; }
    inspect::RegionStatus const& status() const { return status_; }
    UnitStructure const& structure() const { return structure_; }
    ValueTracker const& tracker() const { return tracker_; }
    EventLog const& events() const { return events_; }
    unsigned structureChanges() const { return structureChanges_; }

    /// @return the record of a value of this structure
    shm::record::QelShmMVal const& record(UnitValue const& value) const;
    eStatus_Bits stateOf(UnitPoint const& point) const;
    eStatus_Bits stateOf(UnitValue const& value) const { return record(value).state; }

    ValueAge ageOf(UnitValue const& value) const;

    /// Whether a value was delivered once, but not within the limit. Lost values are not: their state says it.
    bool isStale(UnitValue const& value, Freshness const& freshness) const;

    /// @return ms since the last delivery to any selected value; none if none was seen
    std::optional<std::uint64_t> sinceDelivery() const;

    /// @return ms since the region was opened or became active
    std::uint64_t sinceLive() const { return snapshot_.ticks - live_.value_or(snapshot_.ticks); }

    /// @return ms since another object was opened; none if there was only one
    std::optional<std::uint64_t> sinceReattached() const;

private:
    void note(std::string text, tools::Style style);
    void noteCondition(inspect::Condition before, eStatus_Bits stateBefore);
    void noteStates(std::vector<ValueChange> const& changes);
    void beginObject();
    std::uint64_t newestDelivery() const;

    Snapshot snapshot_;
    inspect::RegionStatus status_;
    UnitStructure structure_;
    ValueTracker tracker_;
    EventLog events_;
    std::uint64_t newest_ = 0; ///< by the writer's clock, ms since 1970 UTC; 0 for none
    unsigned structureChanges_ = 0;
    bool isBegun_ = false;
    std::optional<std::uint64_t> live_;       ///< ticks at which this object's content was there first
    std::optional<std::uint64_t> delivered_;  ///< ticks of the last delivery of any value
    std::optional<std::uint64_t> reattached_; ///< ticks at which another object was opened
};

/// A style that says nothing good: "Good" and "Faint" become "Plain". Reentrant.
tools::Style eventStyle(eStatus_Bits state);

} // namespace qel::watch

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What changes in a unit from snapshot to snapshot, for programs.
#pragma once

#include "tools/qelshm/watch/SnapshotSource.h"
#include "tools/qelshm/watch/UnitStructure.h"
#include "tools/qelshm/watch/WatchedNames.h"

#include "domain/eStatus_Bits.h"
#include "inspect/image/RegionStatus.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace qel::stream {

/// A value, or the state of a point itself, that differs from what it was when it was seen last. Reentrant.
struct Change {
    std::uint32_t point = 0; ///< index into UnitStructure::points()
    std::optional<std::uint32_t>
        value;            ///< index into UnitStructure::values(); none for the point's own state
    std::string path;     ///< "unit1/inlet1:active-power"; that of the point for its own state
    std::string key;      ///< "active-power"; "" for the point's own state
    double number = 0.0;  ///< none for the point's own state
    std::uint64_t at = 0; ///< ms since 1970 UTC; 0 for never
    eStatus_Bits before = eStatus_UndefinedValue;
    eStatus_Bits state = eStatus_UndefinedValue;

    /// Whether the state differs, not only the number.
    bool isStateChange() const { return before != state; }
};

/// What a snapshot brings. It refers to the snapshot and to the finder that made it, and ends with either. Reentrant.
struct Report {
    watch::Snapshot const& snapshot;
    inspect::RegionStatus const& status;
    watch::UnitStructure const& structure;
    bool isConditionNew; ///< the condition differs from that of the previous snapshot, if there was one
    bool isPictureNew;   ///< the first snapshot of an active region, or other points or values than before
    std::vector<Change> changes;
};

/// Compares the selected values and points of each snapshot with what they were when they were seen last. What is seen for
/// the first time has not changed. What comes back has, if it is not what it was.
///
/// Memory: about 100 bytes for each value that was ever seen.
///
/// Threads: reentrant.
class ChangeFinder {
public:
    /// @param names the selection
    explicit ChangeFinder(watch::WatchedNames const& names) : names_(names), structure_(names) {}

    /// @param snapshot, status must outlive the report
    Report update(watch::Snapshot const& snapshot, inspect::RegionStatus const& status);

private:
    struct Seen {
        double number;
        eStatus_Bits state;
    };

    void compare(Report& report, Change change, long long svid);

    watch::WatchedNames names_;
    watch::UnitStructure structure_;
    std::optional<inspect::Condition> condition_;
    unsigned objects_ = 0;                     // the one of the last picture
    std::unordered_map<long long, Seen> seen_; // by sensor id
};

} // namespace qel::stream

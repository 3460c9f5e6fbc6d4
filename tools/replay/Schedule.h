// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// When points are added and removed.
#pragma once

#include "tools/replay/unit/Topology.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace qel::tools {

/// What the user has set for one point. Times are in seconds of replay time, 0 or more.
struct Appearances {
    PointId point;
    std::string_view comeOption; ///< name of the option that gives the first list
    std::vector<double> comes;
    std::string_view goOption;
    std::vector<double> goes;
};

/// One point is added or removed.
struct Change {
    std::uint64_t due; ///< ms after the start
    PointId point;
    bool comes;
};

/// All changes, sorted by time. A point whose first change removes it is present from the start; one whose first
/// change adds it is not.
///
/// Threads: reentrant.
class Schedule {
public:
    /// Adds the changes of a point.
    /// @throws InputError unless additions and removals alternate, each at a time of its own
    void add(Appearances const& appearances);

    /// Whether the point's next change adds (removes) it; false if there is none.
    bool isToCome(PointId const& point) const { return isNext(point, true); }
    bool isToGo(PointId const& point) const { return isNext(point, false); }

    /// When the next change is due, in ms after the start; nothing after the last.
    std::optional<std::uint64_t> due() const;

    /// Takes the next change; there must be one.
    Change next() { return changes_.at(next_++); }

private:
    bool isNext(PointId const& point, bool comes) const;

    std::vector<Change> changes_;
    std::size_t next_ = 0;
};

} // namespace qel::tools

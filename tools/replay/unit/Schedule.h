// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// When points that come and go do so.
#pragma once

#include "tools/replay/unit/PointId.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace qel::tools {

/// What a user has set for one point: times in seconds of replay time, 0 or more.
struct Appearances {
    PointId point;
    std::string_view comeOption; ///< name of the option that the first list was given with
    std::vector<double> comes;
    std::string_view goOption;
    std::vector<double> goes;
};

/// A point that comes or goes.
struct Change {
    std::uint64_t due; ///< ms after the start
    PointId point;
    bool comes;
};

/// All changes in the order of their times. A point that goes first is there from the start, one that comes
/// first is not.
///
/// Threads: not shared without care.
class Schedule {
public:
    /// Adds the changes of a point.
    /// @throws InputError when it comes while it is there, goes while it is not, or does both at one time
    void add(Appearances const& appearances);

    /// Whether the point has changes, and the first of them still to come is that it comes (goes).
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

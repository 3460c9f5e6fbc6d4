// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Changed values as lines of text.
#pragma once

#include "tools/qelshm/watch/SnapshotSource.h"
#include "tools/qelshm/watch/UnitStructure.h"
#include "tools/qelshm/watch/ValueTracker.h"
#include "tools/qelshm/watch/WatchedNames.h"

#include "inspect/image/RegionStatus.h"

#include <cstdint>
#include <iosfwd>
#include <optional>

namespace qel::watch {

/// Writes a line for each value whose number or state has changed: time, path, name, number with unit, state. Values of
/// the first snapshot and values that come later count as unchanged.
///
/// Threads: reentrant.
class LinePrinter {
public:
    /// @param out        must outlive the printer
    /// @param names      the selection
    /// @param isColoured whether states are coloured
    /// @param lines      number of lines to write; none for no limit
    LinePrinter(std::ostream& out, WatchedNames names, bool isColoured, std::optional<std::uint64_t> lines);

    /// Writes what has changed since the previous snapshot.
    /// @param status of the snapshot
    void update(Snapshot const& snapshot, inspect::RegionStatus const& status);

    /// @return whether all lines are written or nobody reads them any more
    bool isDone() const;

private:
    void print(Snapshot const& snapshot, UnitValue const& value);

    std::ostream& out_;
    bool isColoured_;
    std::optional<std::uint64_t> linesLeft_;
    UnitStructure structure_;
    ValueTracker tracker_;
};

} // namespace qel::watch

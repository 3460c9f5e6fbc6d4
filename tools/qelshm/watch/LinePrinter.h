// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Changes of values as lines of text.
#pragma once

#include "tools/qelshm/terminal/LineColours.h"
#include "tools/qelshm/watch/Look.h"
#include "tools/qelshm/watch/UnitStructure.h"
#include "tools/qelshm/watch/ValueTracker.h"
#include "tools/qelshm/watch/WatchedNames.h"

#include "inspect/image/RegionStatus.h"

#include <cstdint>
#include <iosfwd>
#include <optional>

namespace qel::watch {

/// Writes a line for each value whose number or state has changed: time, path, name, number with unit, state. Values
/// that are there at the first time, or that come later, are taken as they are.
///
/// Threads: not shared.
class LinePrinter {
public:
    /// @param out    must outlive the printer
    /// @param lines  it is done after so many; none for no end
    LinePrinter(std::ostream& out, WatchedNames names, LineColours colours,
                std::optional<std::uint64_t> lines);

    void update(Look const& look, inspect::RegionStatus const& status);

    /// Also when nobody reads the lines any more.
    bool isDone() const;

private:
    void print(Look const& look, UnitValue const& value);

    std::ostream& out_;
    LineColours colours_;
    std::optional<std::uint64_t> linesLeft_;
    UnitStructure structure_;
    ValueTracker tracker_;
};

} // namespace qel::watch

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Why a point is not "On", as lines.
#pragma once

#include "tools/qelshm/terminal/Style.h"
#include "tools/qelshm/watch/WatchedUnit.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qel::watch {

/// A line with its colour. Reentrant.
struct StyledLine {
    std::string text;
    tools::Style style;
};

/// The causes that inspect::pointCauses() finds, each with its way up to the point. Reentrant.
/// @param point index into the points of the unit's structure
std::vector<StyledLine> whyLines(WatchedUnit const& unit, std::uint32_t point);

} // namespace qel::watch

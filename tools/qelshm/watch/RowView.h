// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Rows of the table as text.
#pragma once

#include "tools/qelshm/terminal/Style.h"
#include "tools/qelshm/watch/RowCursor.h"
#include "tools/qelshm/watch/WatchedUnit.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qel::watch {

/// What was seen of a value; the texts are empty for a point and while there was no number. Reentrant.
struct StatisticsView {
    std::string minimum;
    std::string maximum;
    std::string mean;
    std::string rate; ///< "1.0/s", "6.0/m"
};

/// A row of the table. Reentrant.
struct RowView {
    bool isPoint;
    bool isFoldable;
    bool isFolded;
    bool isSelected;
    bool isFresh;  ///< changed a moment ago
    bool isStale;  ///< not delivered for longer than allowed
    bool isMarked; ///< has a curve in the graph, also while it is not selected
    std::uint32_t depth;
    std::string name;
    std::string place;     ///< in a flat order: path of the point, with which the name begins
    std::string shortName; ///< the same where there is little room: without the points above
    std::string type;      ///< of a point
    std::string value;     ///< of a value, with its unit; "-" if it was never delivered
    std::string state;
    tools::Style style; ///< of the state
    std::string
        age; ///< since the last delivery; with '>' if none was seen, with '!' if it is stale, "-" for never
    StatisticsView statistics;
};

/// What rows are made from. Reentrant.
struct RowViewInput {
    WatchedUnit const& unit;
    Freshness const& freshness;
    std::vector<long long> const& marks; ///< ids of the values that are marked
};

/// A row of a point. Reentrant.
RowView pointView(RowViewInput const& input, UnitPoint const& point);

/// A row of a value in the tree. Reentrant.
RowView valueView(RowViewInput const& input, UnitValue const& value);

/// The visible rows of a cursor's list. Reentrant.
/// @param order of the list; in all but the tree, values are named with their points
std::vector<RowView> visibleRows(RowViewInput const& input, RowCursor const& cursor, SortOrder order);

} // namespace qel::watch

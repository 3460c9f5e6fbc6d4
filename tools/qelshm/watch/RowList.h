// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The rows of the table.
#pragma once

#include "tools/qelshm/watch/TextFilter.h"
#include "tools/qelshm/watch/UnitStructure.h"
#include "tools/qelshm/watch/ValueTracker.h"

#include "inspect/image/Image.h"

#include <cstdint>
#include <map>
#include <vector>

namespace qel::watch {

/// The order of the rows. Tree shows points with their values below; the others are flat and show values only.
enum class SortOrder : std::uint8_t {
    Tree,
    State, ///< alarms first
    Name,  ///< by path, then by the value's name; digits in them compare as numbers
    Age,   ///< longest without a delivery first
};

/// Reentrant.
/// @return "tree", "state", "name" or "age"
char const* sortName(SortOrder order);

/// Which points hide what is below them.
///
/// Threads: reentrant.
class Folds {
public:
    /// A point that was never set is open if it has children, so that all points are visible.
    bool isFolded(UnitPoint const& point, bool hasChildren) const;

    /// Folds or unfolds a point.
    void set(long long svid, bool isFolded) { folds_[svid] = isFolded; }

private:
    std::map<long long, bool> folds_; ///< by the point's id, so that it survives a change of slots
};

/// A row of the table. Reentrant.
struct Row {
    bool isPoint;
    std::uint32_t index; ///< into the points or the values of the structure
    std::uint32_t depth; ///< from 0
    bool isFoldable;
    bool isFolded;
    long long svid; ///< of the point or the value
};

/// What the rows are made from. Reentrant.
struct RowListInput {
    UnitStructure const& structure;
    inspect::Image const& image;
    ValueTracker const& tracker;
    Folds const& folds;
    TextFilter const& filter;
    SortOrder order;
    std::uint64_t ticks; ///< ms, see ValueTracker
};

/// Lists the rows from the top. With a filter: the points and values that match and the points above them, whatever is
/// folded. Reentrant.
std::vector<Row> rowsOf(RowListInput const& input);

} // namespace qel::watch

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

/// In which order rows stand. Tree shows points with their values below; the others show values alone, flat.
enum class SortOrder : std::uint8_t {
    Tree,
    Severity, ///< alarms first
    Name,     ///< by path, then by the value's name; numbers in them by their size
    Age,      ///< longest without a delivery first
};

/// "tree", "state", "name", "age". Any thread.
char const* sortName(SortOrder order);

/// Which points show nothing below them. Threads: not shared.
class Folds {
public:
    /// A point that was never set is open if there are points below it: so all points show, and the values of
    /// those that lead somewhere.
    bool isFolded(UnitPoint const& point, bool hasChildren) const;
    void set(long long svid, bool isFolded) { folds_[svid] = isFolded; }

private:
    std::map<long long, bool> folds_; ///< by the point's id, so that it stays when slots change
};

struct Row {
    bool isPoint;
    std::uint32_t index; ///< into the points or the values of the structure
    std::uint32_t depth; ///< from 0
    bool isFoldable;
    bool isFolded;
};

/// All that rows are made from.
struct RowSource {
    UnitStructure const& structure;
    inspect::Image const& image;
    ValueTracker const& tracker;
    Folds const& folds;
    TextFilter const& filter;
    SortOrder order;
    std::uint64_t ticks; ///< ms, see ValueTracker
};

/// The rows from the top. With a filter, the points and values that match, and the points above them, whatever is
/// folded. A pure function. Any thread.
std::vector<Row> rowsOf(RowSource const& source);

bool hasChildren(UnitStructure const& structure, std::uint32_t point);

} // namespace qel::watch

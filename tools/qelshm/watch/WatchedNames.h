// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The selection of points and values to watch.
#pragma once

#include "inspect/naming/ValuePattern.h"

#include <string>
#include <vector>

namespace qel::watch {

/// Names of points, which select all their values, and of single values, with wildcards; see inspect/naming/ValuePattern.h.
/// An empty selection is everything. Names that do not exist are no error: they may come later.
///
/// Threads: reentrant.
class WatchedNames {
public:
    /// @throws inspect::PatternError if one of the names is none
    explicit WatchedNames(std::vector<std::string> const& names);

    /// @return whether the selection is empty
    bool isEverything() const { return patterns_.empty(); }

    /// @param point id of a point
    /// @return whether the point is selected with all its values
    bool hasPoint(long long point) const;

    /// @param point id of the value's point
    /// @return whether the value is selected, by itself or with its point
    bool hasValue(long long point, unsigned short key) const;

private:
    inspect::ValuePatterns patterns_;
};

} // namespace qel::watch

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The selection of points and values to watch.
#pragma once

#include <string>
#include <vector>

namespace qel::watch {

/// Ids of points, which select all their values, and of single values. An empty selection is everything. Ids that do
/// not exist are no error: they may come later.
///
/// Threads: reentrant.
class WatchedNames {
public:
    /// @param names ids or paths, see isName(); others are ignored
    explicit WatchedNames(std::vector<std::string> const& names);

    /// @return whether the text is an id (hexadecimal with 0x, or decimal) or the path of a point
    static bool isName(std::string const& text);

    /// @return whether the selection is empty
    bool isEverything() const { return svids_.empty(); }

    /// @param point id of a point
    /// @return whether the point is selected with all its values
    bool hasPoint(long long point) const { return isEverything() || has(point); }

    /// @param point id of the value's point
    /// @return whether the value is selected, by itself or with its point
    bool hasValue(long long point, unsigned short key) const { return hasPoint(point) || has(point | key); }

private:
    bool has(long long svid) const;

    std::vector<long long> svids_;
};

} // namespace qel::watch

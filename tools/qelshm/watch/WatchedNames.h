// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What of a unit is to be watched.
#pragma once

#include <string>
#include <vector>

namespace qel::watch {

/// Ids of points, which stand for all their values, and of single values. Without any, everything is watched. What
/// does not exist is no error: it may come later. Threads: const operations from any thread.
class WatchedNames {
public:
    /// @param names ids or paths, see isName(); others are ignored
    explicit WatchedNames(std::vector<std::string> const& names);

    /// Whether the text is an id (0x and hexadecimal digits, or decimal) or the path of a point.
    static bool isName(std::string const& text);

    bool isEverything() const { return svids_.empty(); }

    /// @param point id of a point
    bool hasPoint(long long point) const { return isEverything() || has(point); }
    bool hasValue(long long point, unsigned short key) const { return hasPoint(point) || has(point | key); }

private:
    bool has(long long svid) const;

    std::vector<long long> svids_;
};

} // namespace qel::watch

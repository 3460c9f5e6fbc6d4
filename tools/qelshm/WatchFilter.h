/// @file
/// What of the region is to be watched.
#pragma once

#include "tools/qelshm/Snapshot.h"

#include <utility>
#include <vector>

namespace qel::tools {

/// Ids of points, which stand for all their values, and of single values. Without any, everything is watched.
class WatchFilter {
public:
    explicit WatchFilter(std::vector<long long> svids) : svids_(std::move(svids)) {}

    /// The snapshot with nothing but what is watched. A point stays in it when one of its values does.
    Snapshot apply(Snapshot snapshot) const;

private:
    bool has(long long svid) const;

    std::vector<long long> svids_;
};

} // namespace qel::tools

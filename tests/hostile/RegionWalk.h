// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Walks the bytes of a region the plain way.
#pragma once

#include "tests/support/RawRegion.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qel::test {

using Positions = std::vector<std::uint32_t>;

struct WalkedPoint {
    std::uint32_t slot;
    unsigned int depth; ///< 1 for a top-level point
    Positions values;
};

/// What readers reach by following links: from the root's two lists on, a point, its values, its children, its
/// following siblings. Shares nothing with the library, and comes to an end whatever the links say, unlike the
/// library, which takes links for free of circles. Content that would keep the library going is told by ends().
class RegionWalk {
public:
    /// @param raw looked at during construction, and by the chains and texts below
    explicit RegionWalk(RawRegion const& raw);

    /// Whether every walk ends: no chain is circular, and what is shared is not met more often than a full region
    /// has slots. Nothing below counts for anything if not.
    bool ends() const { return ends_; }

    /// In the order in which tree() shows them.
    std::vector<WalkedPoint> const& points() const { return points_; }
    std::size_t valueCount() const { return valueCount_; }

    /// The slots of a list that starts at a position. At most one more than there are slots, if it is circular.
    Positions siblings(std::uint32_t first) const;
    Positions valueChain(std::uint32_t first) const;

    /// What tree() shall show.
    std::string treeText() const;

private:
    void walk(std::uint32_t first);
    void addValues(WalkedPoint& point);

    RawRegion const& raw_;
    std::vector<WalkedPoint> points_;
    std::size_t valueCount_ = 0;
    bool ends_ = true;
};

} // namespace qel::test

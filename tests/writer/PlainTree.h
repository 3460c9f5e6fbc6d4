// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the region's links show, walked over its plain bytes, and what in them no writer may show.
#pragma once

#include "tests/support/RawRegion.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace qel::test {

/// Walks the region once, when it is constructed; each slot at most once, so it ends whatever the links say.
class PlainTree {
public:
    struct Point {
        std::int64_t guid;
        std::map<std::uint16_t, std::uint32_t> values; ///< key to slot
    };

    explicit PlainTree(RawRegion const& raw);

    /// By slot.
    std::map<std::uint32_t, Point> const& points() const { return points_; }

    std::set<std::uint32_t> pointSlots() const;
    std::set<std::uint32_t> const& valueSlots() const { return values_; }

    /// A slot, an id or a key that is met twice, and a point whose pos, prev or parent is not where it stands.
    std::vector<std::string> const& faults() const { return faults_; }

private:
    void walk(std::uint32_t first, std::uint32_t parent);
    void walkValues(std::uint32_t pos, Point& point);

    RawRegion const& raw_;
    std::map<std::uint32_t, Point> points_;
    std::set<std::uint32_t> values_;
    std::set<std::int64_t> guids_;
    std::vector<std::string> faults_;
};

} // namespace qel::test

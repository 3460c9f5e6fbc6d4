// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a walk over the region has met.
#pragma once

#include <cstdint>
#include <vector>

namespace qel::test {

struct SeenPoint {
    std::uint32_t slot = 0;
    std::uint32_t before = 0; ///< the slot in front of it in its list; only plain walks tell
    std::uint32_t prev = 0;
    std::uint32_t parent = 0;
    std::uint32_t depth = 0;
    std::int32_t state = 0;
    std::int64_t guid = 0;
    std::uint64_t at = 0;
    std::uint8_t type = 0;
};

struct SeenValue {
    std::int64_t owner = 0; ///< sensor id of the point under which it was met
    std::uint64_t number = 0;
    std::uint64_t at = 0;
    std::uint32_t slot = 0;
    std::int32_t state = 0;
    std::uint16_t key = 0;
};

struct Picture {
    std::vector<SeenPoint> points; ///< in the order of the walk
    std::vector<SeenValue> values;
    std::int32_t globalState = 0;

    void clear();

    /// The same slots with the same contents, whatever the order, and whatever stands in front of what.
    bool showsTheSameAs(Picture const& other) const;

    /// The same slots in the same places of the tree, in the same order.
    bool isInTheOrderOf(Picture const& other) const;
};

} // namespace qel::test

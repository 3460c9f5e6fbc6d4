// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file Whether the tree still leads to a slot. The slot's content does not show that: a removed point keeps its
/// id and its links
/// until its slot is used again, while its values' slots may belong to other points already.
///
/// Threads: reentrant. The writer may change the region meanwhile.
#pragma once

#include "region/QelShmRecords.h"
#include "region/RegionFields.h"

#include <cstdint>

namespace shm {

/// Tells whether a point's predecessor leads to it: the next link of its previous sibling, the children link of
/// its parent, or a list head of the root.
/// @param region the region
/// @param pos    of the point, below MP_COUNT
/// @return true for a point in a list; false for a removed point, and briefly while the writer links or removes a
///         neighbour
inline bool isLinkedToByPredecessor(record::Region const& region, std::uint32_t pos) {
    auto const& point = region.points[pos];
    if (auto const previous = loadLink(point.prev); previous < MP_COUNT) {
        return loadLink(region.points[previous].next) == pos;
    }
    if (auto const parent = loadLink(point.parent); parent < MP_COUNT) {
        return loadLink(region.points[parent].children) == pos;
    }
    return loadLink(region.root.devices) == pos || loadLink(region.root.groups) == pos;
}

/// Searches for a point in the list of its parent's children, or in the lists of the root. Visits at most MP_COUNT
/// points of a list.
/// @param region the region
/// @param pos    of the point, below MP_COUNT
/// @return whether the list holds the point
bool isInSiblingList(record::Region const& region, std::uint32_t pos);

/// Searches for a value in a point's chain. Visits at most MV_COUNT values.
/// @param region the region
/// @param first  position of the chain's first value
/// @param pos    of the value
/// @return whether the chain holds the value
inline bool isInValueChain(record::Region const& region, std::uint32_t first, std::uint32_t pos) {
    auto left = MV_COUNT;
    for (auto current = first; current < MV_COUNT && left != 0; --left) {
        if (current == pos) {
            return true;
        }
        current = loadLink(region.values[current].next);
    }
    return false;
}

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Whether the tree still holds a slot. Contents alone do not tell: a removed point's slot keeps its id and its links
/// until it is used again, while its values' slots may belong to other points already.
#pragma once

#include "region/QelShmRecords.h"
#include "region/RegionFields.h"

#include <cstdint>

namespace shm {

/// Whether the link that stands before a point leads to it: its previous sibling's, its parent's or one of the root's.
/// True for a point in a list. False for a removed one, and for an instant for one whose neighbour is being linked or
/// removed.
/// @param pos below MP_COUNT
inline bool isReferred(record::Region const& region, std::uint32_t pos) {
    auto const& point = region.points[pos];
    if (auto const previous = loadLink(point.prev); previous < MP_COUNT) {
        return loadLink(region.points[previous].next) == pos;
    }
    if (auto const parent = loadLink(point.parent); parent < MP_COUNT) {
        return loadLink(region.points[parent].children) == pos;
    }
    return loadLink(region.root.devices) == pos || loadLink(region.root.groups) == pos;
}

/// Whether the list that a point claims to be in, its parent's or one of the root's, holds it. It walks that list, at
/// most MP_COUNT points.
/// @param pos below MP_COUNT
bool isListed(record::Region const& region, std::uint32_t pos);

/// Whether a chain of values holds a slot. It walks up to the slot, at most MV_COUNT values.
/// @param first position of the chain's first value
inline bool isInChain(record::Region const& region, std::uint32_t first, std::uint32_t pos) {
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

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/Reachability.h"

namespace shm {

namespace {

bool isInList(record::Region const& region, std::uint32_t first, std::uint32_t pos) {
    auto left = MP_COUNT;
    for (auto current = first; current < MP_COUNT && left != 0; --left) {
        if (current == pos) {
            return true;
        }
        current = loadLink(region.points[current].next);
    }
    return false;
}

} // namespace

bool isInSiblingList(record::Region const& region, std::uint32_t pos) {
    if (auto const parent = loadLink(region.points[pos].parent); parent < MP_COUNT) {
        return isInList(region, loadLink(region.points[parent].children), pos);
    }
    return isInList(region, loadLink(region.root.devices), pos) ||
           isInList(region, loadLink(region.root.groups), pos);
}

} // namespace shm

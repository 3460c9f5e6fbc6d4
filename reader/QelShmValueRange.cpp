// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelShmValueRange.h"

namespace shm {

QelShmValueRange::Iterator QelShmValueRange::nextRun(record::QelShmMVal const* slots, std::uint32_t first,
                                                     std::uint32_t left) {
    auto next = first;
    auto following = first;
    while (next == following && next < MV_COUNT && following - first != left) {
        next = loadLink(slots[following++].next);
    }
    return following == first ? Iterator() : Iterator(slots, first, following, next, left);
}

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/sortSiblings.h"

#include "reader/QelShmMPntCmp.h"

#include <algorithm>
#include <limits>

namespace shm {

void sortSiblings(record::QelShmMP const* points, std::uint16_t* first, std::uint16_t const* last) {
    auto const keyOf = [points](std::uint16_t pos) {
        return QelShmMPntCmp::key(points[pos].guid);
    };
    auto highest = std::numeric_limits<std::int64_t>::min();
    for (auto* current = first; current != last; ++current) {
        auto const pos = *current;
        auto const key = keyOf(pos);
        if (key >= highest) {
            highest = key;
            continue;
        }
        auto* const place = std::upper_bound(
            first, current, key, [&](std::int64_t left, std::uint16_t right) { return left < keyOf(right); });
        std::move_backward(place, current, current + 1);
        *place = pos;
    }
}

} // namespace shm

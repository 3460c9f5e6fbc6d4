// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A small tree whose stored order differs from the order of visits.
#pragma once

#include "tests/support/ForgedRegion.h"

#include <cstdint>

namespace qel::test {

/// Sensor id of an electrical point, counted up; sorts by its number.
constexpr long long svid(std::uint32_t number) {
    return 0x0100000000000000 + number * 0x10000LL;
}

/// devices: 9 before 2 as stored; below 9: 5, 4, 6 as stored; below 4: 8. groups: 7. Points 4 and 7 have values.
inline void addSampleTree(ForgedRegion& region) {
    for (std::uint32_t const number : {2U, 4U, 5U, 6U, 7U, 8U, 9U}) {
        region.point(number, svid(number));
    }
    region.devices({9, 2});
    region.groups({7});
    region.children(9, {5, 4, 6});
    region.children(4, {8});
    region.values(4, 100, {31, 30, 32});
    region.values(7, 200, {30});
}

} // namespace qel::test

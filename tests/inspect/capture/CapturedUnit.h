// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Images of a small unit that changes.
#pragma once

#include "inspect/image/Image.h"
#include "region/QelShmRecords.h"

#include "tests/inspect/SampleUnit.h"

#include <functional>
#include <memory>

namespace qel::test {

/// The unit of SampleUnit.h, changed. Value 0 is unit1:voltage, value 5 that of socket 1.
inline inspect::Image capturedUnit(std::function<void(shm::record::Region&)> const& change = nullptr) {
    auto region = sampleUnit();
    if (change) {
        change(*region);
    }
    return {std::move(region), shm::REGION_SIZE};
}

/// With a number, a time of delivery and a state in a value.
inline inspect::Image unitWith(std::uint32_t value, double number, eStatus_Bits state = eStatus_NoError,
                               std::uint64_t at = 1700000000000) {
    return capturedUnit([&](shm::record::Region& region) {
        region.values[value].value = number;
        region.values[value].state = state;
        region.values[value].at = at;
    });
}

/// Nobody has written to it.
inline inspect::Image wipedUnit() {
    return capturedUnit([](shm::record::Region& region) { region.root.version = 0xFF; });
}

} // namespace qel::test

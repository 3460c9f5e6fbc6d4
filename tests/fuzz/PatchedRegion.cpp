// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/fuzz/PatchedRegion.h"

#include "tests/inspect/SampleUnit.h"

#include <cstddef>
#include <cstring>

namespace qel::fuzz {

namespace {

using shm::record::Region;

std::size_t patchOffset(Input& input) {
    switch (input.byte() % 4) {
    case 0:
        input.byte();
        return offsetof(Region, root) + input.byte() % sizeof(Region::root);
    case 1: {
        auto const slot = input.byte();
        return slot * sizeof(shm::record::QelShmMP) + input.byte() % sizeof(shm::record::QelShmMP);
    }
    case 2: {
        auto const slot = input.byte();
        return offsetof(Region, values) + slot * sizeof(shm::record::QelShmMVal) +
               input.byte() % sizeof(shm::record::QelShmMVal);
    }
    default:
        return input.number(4) % sizeof(Region);
    }
}

void patch(Input& input, Region& region) {
    auto* const bytes = reinterpret_cast<std::uint8_t*>(&region);
    while (!input.isEmpty()) {
        auto const offset = patchOffset(input);
        for (std::size_t i = 0, count = input.byte() % 16; i < count; ++i) {
            bytes[(offset + i) % sizeof region] = input.byte();
        }
    }
}

} // namespace

std::unique_ptr<Region> patchedRegion(Base base, Input input) {
    static auto const sample = test::sampleUnit();
    auto region = std::make_unique<Region>(*sample);
    if (base == Base::Wiped) {
        std::memset(static_cast<void*>(region.get()), shm::WIPE_BYTE, sizeof(Region));
    }
    patch(input, *region);
    return region;
}

} // namespace qel::fuzz

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/PositionStack.h"

#include "region/QelShmRecords.h"

#include <algorithm>
#include <memory>

namespace shm {

namespace {

// Enough for every tree of a writer: all points on the stack, and a chain of all values on top.
constexpr std::size_t firstCapacity = MP_COUNT + MV_COUNT;

} // namespace

void PositionStack::grow(std::size_t count) {
    auto const capacity = std::max({firstCapacity, used_ + count, 2 * capacity_});
    auto* const positions = std::allocator<std::uint16_t>().allocate(capacity);
    std::copy_n(positions_, used_, positions);
    release();
    positions_ = positions;
    capacity_ = capacity;
}

void PositionStack::release() {
    std::allocator<std::uint16_t>().deallocate(positions_, capacity_);
    positions_ = nullptr;
    capacity_ = 0;
}

} // namespace shm

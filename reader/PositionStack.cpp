#include "reader/PositionStack.h"

#include "region/QelShmRecords.h"

#include <algorithm>
#include <memory>

namespace shm {

namespace {

// Serves every tree that a writer lays out: all points on the stack, and a chain of all values on top.
constexpr std::size_t firstCapacity = MP_COUNT + MV_COUNT;

} // namespace

void PositionStack::grow(std::size_t count) {
    auto const capacity = std::max({firstCapacity, used_ + count, 2 * capacity_});
    std::unique_ptr<std::uint16_t[]> positions(new std::uint16_t[capacity]);
    std::copy_n(positions_, used_, positions.get());
    delete[] positions_;
    positions_ = positions.release();
    capacity_ = capacity;
}

void PositionStack::release() {
    delete[] positions_;
    positions_ = nullptr;
    capacity_ = 0;
}

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Which of the writer's stores can be visible together.
#pragma once

#include "tests/cuts/Reach.h"
#include "tests/cuts/StoreLog.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace qel::test {

/// All states of the region that the architecture allows another processor to meet, given the stores of one:
///
/// - a location holds the newest of its stores that is visible, and its stores become visible in their order;
/// - before a release store becomes visible, everything before it is;
/// - a fence lets nothing behind it become visible before everything in front of it;
/// - besides, plain stores pass each other, and pass a release store that stands before them.
///
/// These are the rules of ARMv8 (and of what compilers make of releases and fences on ARMv7) for stores; loads are taken
/// to read the state as it stands. Each state is a frontier (a release store or fence; all up to it is visible) and any
/// choice of the plain stores behind it up to the next fence, as far as each location's order allows. There is no bound on
/// the number of stores that are late, nor by how much they are.
class OrderModel {
public:
    enum class Halves : std::uint8_t { Whole, Split };

    /// @param halves Split: fields of 8 bytes are stored as two halves, as 32-bit processors may do
    OrderModel(Stores const& stores, Halves halves);

    /// The stores that it goes by.
    Stores const& stores() const { return stores_; }

    /// Brings the region into each state that may be met, some of them several times, and calls @p met; afterwards all
    /// stores are visible. The region must be as it was before the first store. Ends early when @p met gives false.
    /// @param reach leaves states out that differ only where nobody reads; null for all states
    /// @return whether it came to the end
    bool forEachState(std::uint8_t* region, Reach* reach, std::function<bool()> const& met);

    /// The same for what is met when all stores become visible in their order.
    bool forEachPrefix(std::uint8_t* region, Reach* reach, std::function<bool()> const& met) const;

private:
    /// The plain stores into one location that may be visible or not, in their order.
    struct Location {
        std::uint32_t offset = 0;
        std::size_t visible = 0; ///< how many of them are
        std::vector<Store const*> stores;
    };

    void collectLate(std::size_t frontier);
    bool forEachChoice(std::uint8_t* region, std::function<bool()> const& met);

    Stores stores_;
    std::vector<Store const*> late_;
    std::vector<Location> locations_;
};

} // namespace qel::test

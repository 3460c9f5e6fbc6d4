// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The order of sensor ids in which parents stand before their children.
#pragma once

#include <cstdint>

namespace shm {

/// Strict weak ordering of sensor ids (svids) by their levels, the highest byte first. A level that an id
/// does not use (0xFF) stands before every used one, so an id stands before all ids that refine it; walking a
/// map in this order meets parents before their children. The key in the low 16 bits only decides between ids
/// of equal levels.
///
/// Threads: any thread.
struct SvidCmp {
    /// @return whether left stands before right
    constexpr bool operator()(long long left, long long right) const noexcept {
        auto const leftRank = levelRanks(left);
        auto const rightRank = levelRanks(right);
        return leftRank != rightRank ? leftRank < rightRank : left < right;
    }

private:
    /// The six level bytes, each increased by one without carry: 0xFF turns into 0 and so comes first, the
    /// order of the others stays, and all six compare at once.
    static constexpr std::uint64_t levelRanks(long long svid) noexcept {
        constexpr std::uint64_t ones = 0x0101010101010101;
        constexpr std::uint64_t highBits = 0x8080808080808080;
        auto const bits = static_cast<std::uint64_t>(svid);
        auto const increased = ((bits & ~highBits) + ones) ^ (bits & highBits);
        return increased >> 16U;
    }
};

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// An order of sensor ids that puts parents before their children.
#pragma once

#include <cstdint>

namespace shm {

/// Strict weak ordering of sensor ids (svids) by their levels, the highest byte first. An unused level (0xFF)
/// comes before every used one, so a map in this order has parents before their children. The key in the low 16
/// bits decides only between ids of equal levels.
///
/// Threads: reentrant. There is no state.
struct SvidCmp {
    /// @param left  any id
    /// @param right any id
    /// @return whether left comes before right
    constexpr bool operator()(long long left, long long right) const noexcept {
        auto const leftRank = levelRanks(left);
        auto const rightRank = levelRanks(right);
        return leftRank != rightRank ? leftRank < rightRank : left < right;
    }

private:
    /// Increases each of the six level bytes by one, without carry. So 0xFF becomes 0 and comes first, the others
    /// keep their order, and one comparison covers all six.
    static constexpr std::uint64_t levelRanks(long long svid) noexcept {
        constexpr std::uint64_t ones = 0x0101010101010101;
        constexpr std::uint64_t highBits = 0x8080808080808080;
        auto const bits = static_cast<std::uint64_t>(svid);
        auto const increased = ((bits & ~highBits) + ones) ^ (bits & highBits);
        return increased >> 16U;
    }
};

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Fast look-up of a point's slot position by its sensor id.
#pragma once

#include "region/QelShmRecords.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace shm {

/// A hash table from a point's svid to its slot position, for at most MP_COUNT points: open addressing, linear
/// probing, no allocation. Each point has a position of its own below MP_COUNT.
///
/// Threads: reentrant. Several threads may call find() on one object while nobody inserts or removes.
class PositionBySvid {
public:
    /// No position.
    static constexpr std::uint16_t none = 0xFFFF;

    /// An empty table.
    PositionBySvid() { clear(); }

    /// Removes all points.
    void clear() { table_.fill(none); }

    /// @param svid of a point
    /// @return its position, none for an unknown point
    std::uint16_t find(long long svid) const { return table_[placeOf(svid)]; }

    /// Adds a point. Neither svid nor position may be in the table.
    /// @param svid     of the point
    /// @param position of its slot, below MP_COUNT
    void insert(long long svid, std::uint16_t position) {
        table_[placeOf(svid)] = position;
        svids_[position] = svid;
    }

    /// @param position below MP_COUNT
    /// @return the point that was inserted last with this position
    long long svidOf(std::size_t position) const { return svids_[position]; }

    /// Removes a point. Does nothing for an unknown point.
    /// @param svid of the point
    void remove(long long svid);

private:
    static constexpr unsigned int placeBits = 12; // 4096 places for at most 800 points: probes are short
    static constexpr std::size_t places = std::size_t{1} << placeBits;
    static_assert(places / 2 >= MP_COUNT && none >= MP_COUNT);

    // Fibonacci hashing: the product's high bits depend on all bytes of the id.
    static std::size_t homeOf(long long svid) {
        constexpr std::uint64_t goldenRatio = 0x9E3779B97F4A7C15;
        return static_cast<std::size_t>(static_cast<std::uint64_t>(svid) * goldenRatio >> (64U - placeBits));
    }

    /// The place that holds the point, or the free place for it.
    std::size_t placeOf(long long svid) const {
        auto place = homeOf(svid);
        while (table_[place] != none && svids_[table_[place]] != svid) {
            place = (place + 1) % places;
        }
        return place;
    }

    std::array<std::uint16_t, places> table_{}; // positions
    std::array<long long, MP_COUNT> svids_{};   // by position
};

} // namespace shm

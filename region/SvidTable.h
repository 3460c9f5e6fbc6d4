// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The fast way from a point's sensor id to a number.
#pragma once

#include "region/QelShmRecords.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace shm {

/// A hash table of at most MP_COUNT points: open addressing, linear probing, nothing allocated. Each point has a
/// number of its own below MP_COUNT.
///
/// Threads: find() may run in any thread while nothing is inserted or removed.
class SvidTable {
public:
    static constexpr std::uint16_t none = 0xFFFF;

    SvidTable() { clear(); }

    void clear() { table_.fill(none); }

    /// The number of a point, none for an unknown one.
    std::uint16_t find(long long svid) const { return table_[placeOf(svid)]; }

    /// A point and a number that are not in the table.
    void insert(long long svid, std::uint16_t number) {
        table_[placeOf(svid)] = number;
        svids_[number] = svid;
    }

    /// The point that was inserted last with a number.
    long long svidOf(std::size_t number) const { return svids_[number]; }

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

    /// The place that holds the point, or the free one where it would be put.
    std::size_t placeOf(long long svid) const {
        auto place = homeOf(svid);
        while (table_[place] != none && svids_[table_[place]] != svid) {
            place = (place + 1) % places;
        }
        return place;
    }

    std::array<std::uint16_t, places> table_{}; // numbers
    std::array<long long, MP_COUNT> svids_{};   // by number
};

} // namespace shm

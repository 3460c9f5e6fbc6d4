// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The writer's fast way from a sensor id to slots.
#pragma once

#include "region/QelShmRecords.h"
#include "region/SvidTable.h"
#include "writer/MPDef.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace shm {

/// Stands beside the ordered map of definitions and holds the same, flat: a hash table from point svid to slot
/// position, and per point one from value key to slot position. What can run out of memory does so before anything
/// has changed.
///
/// Threads: find(), pos() and mutex() may run in any thread while no point comes or goes: what they read is set by
/// add() and stays as it is until remove(). The values of a point may change meanwhile; its definition's mutex guards
/// them.
class PointIndex {
    static constexpr std::uint16_t noSlot = 0xFFFF;
    static_assert(noSlot >= MV_COUNT);

public:
    class Point {
    public:
        /// Slot of the point.
        std::size_t pos() const { return pos_; }

        /// The mutex of the point's definition.
        std::mutex& mutex() const { return *mutex_; }

        /// Slot of a value, MV_COUNT or more for an unknown key. The caller holds the mutex.
        std::size_t valuePosition(std::uint16_t key) const {
            for (auto place = homeOf(key);; place = nextTo(place)) {
                auto const& value = values_[place];
                if (value.key == key || value.pos == noSlot) {
                    return value.pos;
                }
            }
        }

        /// Makes room for as many values in all, so that insert() need not. Strong: when memory ends the values stay
        /// as they are. The caller holds the mutex.
        void reserve(std::size_t count);

        /// Enters a value whose key is not there and for which there is room. The caller holds the mutex.
        void insert(std::uint16_t key, std::size_t pos) noexcept;

        /// Leaves no value; the room stays. The caller holds the mutex, or is alone with the index.
        void clear() noexcept { std::fill(values_.begin(), values_.end(), Value()); }

    private:
        friend class PointIndex;

        struct Value {
            std::uint16_t key = 0;
            std::uint16_t pos = noSlot;
        };

        static constexpr unsigned int hashBits = 32;

        std::uint32_t homeOf(std::uint32_t key) const {
            constexpr std::uint32_t goldenRatio = 0x9E3779B9;
            return (key * goldenRatio) >> shift_;
        }

        std::uint32_t nextTo(std::uint32_t place) const { return (place + 1) & mask_; }

        std::mutex* mutex_ = nullptr; // not owned; the definition lives in the writer's map
        std::vector<Value> values_;   // a power of two of places, at least a quarter of them free
        std::uint32_t mask_ = 0;      // keeps a place's number inside them
        std::uint8_t shift_ = 0;      // leaves as many bits of a hash
        std::uint16_t pos_ = noSlot;
    };

    /// Null for an unknown point.
    Point const* find(long long svid) const {
        auto const pos = positions_.find(svid);
        return pos == SvidTable::none ? nullptr : &points_[pos];
    }

    /// A point that was not there, with the values that its definition has. The definition stays where it is until
    /// remove(). Strong: when memory ends the index does not know the point.
    /// @param room values to make room for, those of the definition included
    void add(long long svid, MPDef const& definition, std::size_t room = 0);

    /// The point of this very definition, null when it is not here (a copy of it, for example).
    Point* pointOf(MPDef const& definition);

    /// Whether a known point has the slot.
    bool isTaken(std::size_t pos) const { return points_[pos].mutex_ != nullptr; }

    /// The point that has a slot, which must be taken.
    long long svidAt(std::size_t pos) const { return positions_.svidOf(pos); }

    /// Changes nothing when the point is not there.
    void remove(long long svid) noexcept;

private:
    SvidTable positions_;
    std::array<Point, MP_COUNT> points_; // by slot position
};

} // namespace shm

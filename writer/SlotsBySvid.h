// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Fast look-up of the slots of a point and its values by sensor id.
#pragma once

#include "region/PositionBySvid.h"
#include "region/QelShmRecords.h"
#include "writer/MPDef.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace shm {

/// Holds the same as the writer's ordered map of definitions, as hash tables: one from point svid to the point's
/// slot position, and for each point one from value key to the value's slot position. An operation that runs out
/// of memory has changed nothing.
///
/// Threads: thread-bound to the thread that changes the structure. find(), generation(), pos() and mutex() are
/// thread-safe while no point is added or removed. The mutex of a point's definition guards the point's values.
class SlotsBySvid {
    static constexpr std::uint16_t noSlot = 0xFFFF;
    static_assert(noSlot >= MV_COUNT);

public:
    /// The slots of one point.
    class Point {
    public:
        /// @return position of the point's slot
        std::size_t pos() const { return pos_; }

        /// @return the mutex of the point's definition
        std::mutex& mutex() const { return *mutex_; }

        /// Finds a value. The caller holds the mutex.
        /// @param key of the value
        /// @return position of the value's slot; MV_COUNT or more for an unknown key
        std::size_t valuePosition(std::uint16_t key) const {
            for (auto place = homeOf(key);; place = nextTo(place)) {
                auto const& value = values_[place];
                if (value.key == key || value.pos == noSlot) {
                    return value.pos;
                }
            }
        }

        /// Makes room for values, as insert() needs it. The caller holds the mutex.
        /// @param count number of values in all
        /// @throws std::bad_alloc without memory; nothing changes then
        void reserve(std::size_t count);

        /// Adds a value with a new key, for which reserve() has made room. The caller holds the mutex.
        /// @param key of the value
        /// @param pos position of its slot
        void insert(std::uint16_t key, std::size_t pos) noexcept;

    private:
        friend class SlotsBySvid;

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

        std::mutex* mutex_ = nullptr; // not owned; the definition is in the writer's map
        std::vector<Value> values_;   // the size is a power of two, at least a quarter is free
        std::uint32_t mask_ = 0;      // size of values_ minus one
        std::uint8_t shift_ = 0;      // reduces a hash to an index into values_
        std::uint16_t pos_ = noSlot;
    };

    /// Identifies what the look-ups give. It changes when a point or a value is removed: a slot that was found is still
    /// the right one while the number is the same. No two objects of a process ever have the same number, nor 0.
    /// @return the number
    std::uint64_t generation() const { return generation_; }

    /// @param svid of a point
    /// @return the point, null for an unknown one
    Point const* find(long long svid) const {
        auto const pos = positions_.find(svid);
        return pos == PositionBySvid::none ? nullptr : &points_[pos];
    }

    /// Adds an unknown point with the values of its definition.
    /// @param svid       of the point
    /// @param definition must keep its address until remove()
    /// @param room       number of values to make room for, including those of the definition
    /// @throws std::bad_alloc without memory; the index does not know the point then
    void add(long long svid, MPDef const& definition, std::size_t room = 0);

    /// @param definition compared by identity
    /// @return the point of this definition; null for any other one, such as a copy
    Point* pointOf(MPDef const& definition);

    /// @param pos position of a slot, below MP_COUNT
    /// @return whether it is the slot of a known point
    bool isTaken(std::size_t pos) const { return points_[pos].mutex_ != nullptr; }

    /// @param pos position of a known point's slot
    /// @return the point's svid
    long long svidAt(std::size_t pos) const { return positions_.svidOf(pos); }

    /// Removes a point. Does nothing for an unknown point.
    /// @param svid of the point
    void remove(long long svid) noexcept;

    /// Removes a point's values and keeps their room. Does nothing for a definition that pointOf() does not know.
    /// @param definition of the point
    void removeValues(MPDef const& definition) noexcept;

private:
    static std::uint64_t nextGeneration() noexcept;

    std::uint64_t generation_ = nextGeneration();
    PositionBySvid positions_;
    std::array<Point, MP_COUNT> points_; // by slot position
};

} // namespace shm

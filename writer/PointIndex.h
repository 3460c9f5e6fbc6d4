/// @file
/// The writer's fast way from a sensor id to slots.
#pragma once

#include "region/QelShmRecords.h"
#include "region/SvidTable.h"
#include "writer/MPDef.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace shm {

/// Stands beside the ordered map of definitions and holds the same, flat: a hash table from point svid to slot
/// position, and per point one from value key to slot position.
///
/// Threads: find() may run in any thread while no point comes or goes, as a look-up in the map may. The
/// values of a point are guarded by its definition's mutex.
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

        void takeOver(MPDef const& definition);

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

    /// A point that was not there; its definition stays where it is until remove().
    void add(long long svid, MPDef const& definition);

    /// Takes over the values that the definition has now. The caller holds the definition's mutex.
    void update(MPDef const& definition);

    void remove(long long svid);

private:
    SvidTable positions_;
    std::array<Point, MP_COUNT> points_; // by slot position
};

} // namespace shm

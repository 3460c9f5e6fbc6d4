/// @file
/// The writer's fast way from a sensor id to slots.
#pragma once

#include "region/QelShmRecords.h"
#include "writer/MPDef.h"

#include <array>
#include <cstdint>
#include <vector>

namespace shm {

/// Stands beside the ordered map of definitions and holds the same: a flat hash table from point svid to slot
/// position (open addressing, linear probing), and per slot the point's values as a short sorted array.
///
/// Threads: find() may run in any thread while no point comes or goes, as a look-up in the map may. The
/// values of a point are guarded by its definition's mutex.
class PointIndex {
public:
    /// A value's key and slot.
    struct Value {
        std::uint16_t key;
        std::uint16_t pos;
    };

    struct Point {
        long long svid = 0;
        MPDef* definition = nullptr; ///< not owned; lives in the writer's map
        std::vector<Value> values;   ///< keys ascending

        /// Position of a value, NO_POSITION for an unknown key. The caller holds the definition's mutex.
        std::uint32_t valuePosition(unsigned short key) const;
    };

    PointIndex();

    /// Null for an unknown point.
    Point const* find(long long svid) const;

    /// A point that was not there; its definition stays where it is until remove().
    void add(long long svid, MPDef& definition);

    /// Takes over the values that the definition has now. The caller holds the definition's mutex.
    void update(MPDef const& definition);

    void remove(long long svid);

private:
    static constexpr unsigned int tableBits = 11; // 2048 places for at most 800 points
    static constexpr std::size_t tableSize = std::size_t{1} << tableBits;
    static constexpr std::uint16_t noPoint = 0xFFFF;
    static_assert(tableSize / 2 >= MP_COUNT && noPoint >= MP_COUNT);

    static std::size_t placeFor(long long svid);
    std::size_t placeOf(long long svid) const;

    std::array<std::uint16_t, tableSize> table_{}; // slot positions
    std::vector<Point> points_;                    // by slot position
};

} // namespace shm

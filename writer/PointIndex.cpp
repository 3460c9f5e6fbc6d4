#include "writer/PointIndex.h"

#include <algorithm>

namespace shm {

PointIndex::PointIndex() : points_(MP_COUNT) {
    table_.fill(noPoint);
}

std::uint32_t PointIndex::Point::valuePosition(unsigned short key) const {
    auto const value =
        std::lower_bound(values.begin(), values.end(), key,
                         [](Value const& known, unsigned short wanted) { return known.key < wanted; });
    return value != values.end() && value->key == key ? value->pos : NO_POSITION;
}

// Fibonacci hashing: the product's high bits depend on all bytes of the id.
std::size_t PointIndex::placeFor(long long svid) {
    constexpr std::uint64_t goldenRatio = 0x9E3779B97F4A7C15;
    return static_cast<std::size_t>(static_cast<std::uint64_t>(svid) * goldenRatio >> (64U - tableBits));
}

/// The place that holds the point, or the free one where it would be put.
std::size_t PointIndex::placeOf(long long svid) const {
    auto place = placeFor(svid);
    while (table_[place] != noPoint && points_[table_[place]].svid != svid) {
        place = (place + 1) % tableSize;
    }
    return place;
}

PointIndex::Point const* PointIndex::find(long long svid) const {
    auto const pos = table_[placeOf(svid)];
    return pos == noPoint ? nullptr : &points_[pos];
}

void PointIndex::add(long long svid, MPDef& definition) {
    table_[placeOf(svid)] = static_cast<std::uint16_t>(definition.pos);
    auto& point = points_[definition.pos];
    point.svid = svid;
    point.definition = &definition;
    update(definition);
}

void PointIndex::update(MPDef const& definition) {
    auto& values = points_[definition.pos].values;
    values.clear();
    values.reserve(definition.mvs.size());
    for (auto const& [key, pos] : definition.mvs) {
        values.push_back({key, static_cast<std::uint16_t>(pos)});
    }
}

void PointIndex::remove(long long svid) {
    auto hole = placeOf(svid);
    if (table_[hole] == noPoint) {
        return;
    }
    points_[table_[hole]] = Point();
    // Closes the gap, so that no probe ends early: whatever may stand in the hole moves there.
    for (auto place = (hole + 1) % tableSize; table_[place] != noPoint; place = (place + 1) % tableSize) {
        auto const home = placeFor(points_[table_[place]].svid);
        if ((place - home) % tableSize >= (place - hole) % tableSize) {
            table_[hole] = table_[place];
            hole = place;
        }
    }
    table_[hole] = noPoint;
}

} // namespace shm

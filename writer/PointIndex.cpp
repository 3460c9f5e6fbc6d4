#include "writer/PointIndex.h"

namespace shm {

PointIndex::PointIndex() {
    table_.fill(noSlot);
}

void PointIndex::Point::takeOver(MPDef const& definition) {
    auto const& mvs = definition.mvs;
    unsigned int bits = 1;
    while ((std::size_t{3} << bits) < 4 * (mvs.size() + 1)) {
        ++bits;
    }
    mutex_ = &definition.mutex;
    pos_ = static_cast<std::uint16_t>(definition.pos);
    shift_ = static_cast<std::uint8_t>(hashBits - bits);
    mask_ = (std::uint32_t{1} << bits) - 1;
    values_.assign(std::size_t{1} << bits, {});
    for (auto const& [key, pos] : mvs) {
        auto place = homeOf(key);
        while (values_[place].pos != noSlot) {
            place = nextTo(place);
        }
        values_[place] = {key, static_cast<std::uint16_t>(pos)};
    }
}

void PointIndex::add(long long svid, MPDef const& definition) {
    table_[placeOf(svid)] = static_cast<std::uint16_t>(definition.pos);
    svids_[definition.pos] = svid;
    update(definition);
}

void PointIndex::update(MPDef const& definition) {
    points_[definition.pos].takeOver(definition);
}

void PointIndex::remove(long long svid) {
    auto hole = placeOf(svid);
    if (table_[hole] == noSlot) {
        return;
    }
    points_[table_[hole]] = Point();
    // Closes the gap, so that no probe ends early: whatever may stand in the hole moves there.
    for (auto place = (hole + 1) % tableSize; table_[place] != noSlot; place = (place + 1) % tableSize) {
        auto const home = homeOf(svids_[table_[place]]);
        if ((place - home) % tableSize >= (place - hole) % tableSize) {
            table_[hole] = table_[place];
            hole = place;
        }
    }
    table_[hole] = noSlot;
}

} // namespace shm

#include "writer/PointIndex.h"

namespace shm {

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
    positions_.insert(svid, static_cast<std::uint16_t>(definition.pos));
    update(definition);
}

void PointIndex::update(MPDef const& definition) {
    points_[definition.pos].takeOver(definition);
}

void PointIndex::remove(long long svid) {
    auto const pos = positions_.find(svid);
    if (pos != SvidTable::none) {
        points_[pos] = Point();
        positions_.remove(svid);
    }
}

} // namespace shm

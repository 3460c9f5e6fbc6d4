// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/SlotsBySvid.h"

#include <atomic>
#include <utility>

namespace shm {

std::uint64_t SlotsBySvid::nextGeneration() noexcept {
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

void SlotsBySvid::Point::reserve(std::size_t count) {
    auto const isEnough = [count](std::size_t size) {
        return 3 * size >= 4 * (count + 1);
    };
    if (isEnough(values_.size())) {
        return;
    }
    unsigned int bits = 1;
    while (!isEnough(std::size_t{1} << bits)) {
        ++bits;
    }
    std::vector<Value> roomier(std::size_t{1} << bits);
    // Nothing fails from here on.
    values_.swap(roomier);
    shift_ = static_cast<std::uint8_t>(hashBits - bits);
    mask_ = (std::uint32_t{1} << bits) - 1;
    for (auto const& value : roomier) {
        if (value.pos != noSlot) {
            insert(value.key, value.pos);
        }
    }
}

void SlotsBySvid::Point::insert(std::uint16_t key, std::size_t pos) noexcept {
    auto place = homeOf(key);
    while (values_[place].pos != noSlot) {
        place = nextTo(place);
    }
    values_[place] = {key, static_cast<std::uint16_t>(pos)};
}

void SlotsBySvid::add(long long svid, MPDef const& definition, std::size_t room) {
    Point point;
    point.mutex_ = &definition.mutex;
    point.pos_ = static_cast<std::uint16_t>(definition.pos);
    point.reserve(std::max(room, definition.mvs.size()));
    for (auto const& [key, pos] : definition.mvs) {
        point.insert(key, pos);
    }
    points_[definition.pos] = std::move(point);
    positions_.insert(svid, static_cast<std::uint16_t>(definition.pos));
}

SlotsBySvid::Point* SlotsBySvid::pointOf(MPDef const& definition) {
    bool const isIndexed = definition.pos < MP_COUNT && points_[definition.pos].mutex_ == &definition.mutex;
    return isIndexed ? &points_[definition.pos] : nullptr;
}

void SlotsBySvid::remove(long long svid) noexcept {
    auto const pos = positions_.find(svid);
    if (pos != PositionBySvid::none) {
        generation_ = nextGeneration();
        points_[pos] = Point();
        positions_.remove(svid);
    }
}

void SlotsBySvid::removeValues(MPDef const& definition) noexcept {
    if (auto* const point = pointOf(definition)) {
        generation_ = nextGeneration();
        std::fill(point->values_.begin(), point->values_.end(), Point::Value());
    }
}

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/PlainWalk.h"

#include "tests/support/RawRegion.h"

#include <cstring>

namespace qel::test {

namespace {

/// More than any tree of these tests has.
constexpr std::size_t mostPoints = 100;
constexpr std::size_t mostValues = 200;

template <typename Number>
Number get(std::uint8_t const* bytes) {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

constexpr std::uint32_t points = 800;
constexpr std::uint32_t values = 8800;

} // namespace

bool PlainWalk::walk(Picture& met) const {
    met.clear();
    met.globalState = get<std::int32_t>(region_ + field::rootState);
    return list(get<std::uint32_t>(region_ + field::devices), 1, met) &&
           list(get<std::uint32_t>(region_ + field::groups), 1, met);
}

bool PlainWalk::list(std::uint32_t first, std::uint32_t depth, Picture& met) const {
    auto before = rawNone;
    for (auto slot = first; slot < points;) {
        auto const* const bytes = region_ + rawPoint(slot);
        if (!note(slot, before, depth, met) ||
            !list(get<std::uint32_t>(bytes + field::children), depth + 1, met)) {
            return false;
        }
        before = slot;
        slot = get<std::uint32_t>(bytes + field::next);
    }
    return true;
}

bool PlainWalk::note(std::uint32_t slot, std::uint32_t before, std::uint32_t depth, Picture& met) const {
    auto const* const bytes = region_ + rawPoint(slot);
    SeenPoint point;
    point.slot = slot;
    point.before = before;
    point.prev = get<std::uint32_t>(bytes + field::prev);
    point.parent = get<std::uint32_t>(bytes + field::parent);
    point.depth = depth;
    point.state = get<std::int32_t>(bytes + field::pointState);
    point.guid = get<std::int64_t>(bytes + field::guid);
    point.at = get<std::uint64_t>(bytes + field::pointAt);
    point.type = bytes[field::pointType];
    met.points.push_back(point);
    for (auto pos = get<std::uint32_t>(bytes + field::mvs); pos < values;) {
        auto const* const slotBytes = region_ + rawValue(pos);
        SeenValue value;
        value.slot = pos;
        value.owner = point.guid;
        value.key = get<std::uint16_t>(slotBytes + field::valueKey);
        value.number = get<std::uint64_t>(slotBytes);
        value.at = get<std::uint64_t>(slotBytes + field::valueAt);
        value.state = get<std::int32_t>(slotBytes + field::valueState);
        met.values.push_back(value);
        if (met.values.size() > mostValues) {
            return false;
        }
        pos = get<std::uint32_t>(slotBytes + field::valueNext);
    }
    return met.points.size() <= mostPoints;
}

bool PlainWalk::siblingsEnd(std::uint32_t first) const {
    std::size_t met = 0;
    for (auto slot = first; slot < points;
         slot = get<std::uint32_t>(region_ + rawPoint(slot) + field::next)) {
        if (++met > mostPoints) {
            return false;
        }
    }
    return true;
}

bool PlainWalk::valuesEnd(std::uint32_t first) const {
    std::size_t met = 0;
    for (auto slot = first; slot < values;
         slot = get<std::uint32_t>(region_ + rawValue(slot) + field::valueNext)) {
        if (++met > mostValues) {
            return false;
        }
    }
    return true;
}

} // namespace qel::test

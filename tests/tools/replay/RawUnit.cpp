// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/tools/replay/RawUnit.h"

#include "format/HexText.h"
#include "region/SvidParts.h"

#include <stdexcept>

namespace qel::test {

namespace {

constexpr std::uint32_t pointCount = 800;
constexpr std::uint32_t valueCount = 8800;

} // namespace

template <typename Visit>
void RawUnit::walk(std::uint32_t position, Visit const& visit) const {
    for (; position < pointCount; position = region_.u32(rawPoint(position) + field::next)) {
        visit(rawPoint(position));
        walk(region_.u32(rawPoint(position) + field::children), visit);
    }
}

template <typename Visit>
void RawUnit::walkAll(Visit const& visit) const {
    walk(region_.u32(field::devices), visit);
    walk(region_.u32(field::groups), visit);
}

std::set<long long> RawUnit::points() const {
    std::set<long long> svids;
    walkAll([&](std::size_t point) { svids.insert(region_.get<std::int64_t>(point + field::guid)); });
    return svids;
}

std::set<long long> RawUnit::values() const {
    std::set<long long> svids;
    walkAll([&](std::size_t point) {
        auto const svid = region_.get<std::int64_t>(point + field::guid);
        for (auto value = region_.u32(point + field::mvs); value < valueCount;
             value = region_.u32(rawValue(value) + field::valueNext)) {
            svids.insert(svid | region_.get<std::uint16_t>(rawValue(value) + field::valueKey));
        }
    });
    return svids;
}

std::size_t RawUnit::offsetOf(long long point) const {
    std::optional<std::size_t> found;
    walkAll([&](std::size_t candidate) {
        if (region_.get<std::int64_t>(candidate + field::guid) == point) {
            found = candidate;
        }
    });
    return found ? *found : throw std::out_of_range("there is no point " + shm::svidText(point));
}

std::optional<RawReading> RawUnit::value(long long svid) const {
    if (values().count(svid) == 0) {
        return std::nullopt;
    }
    auto position = region_.u32(offsetOf(shm::pointSvid(svid)) + field::mvs);
    while (region_.get<std::uint16_t>(rawValue(position) + field::valueKey) != (svid & 0xFFFF)) {
        position = region_.u32(rawValue(position) + field::valueNext);
    }
    auto const slot = rawValue(position);
    return RawReading{region_.get<double>(slot), region_.get<std::uint64_t>(slot + field::valueAt),
                      region_.get<std::int32_t>(slot + field::valueState)};
}

std::int32_t RawUnit::stateOf(long long point) const {
    return region_.get<std::int32_t>(offsetOf(point) + field::pointState);
}

std::uint64_t RawUnit::timeOf(long long point) const {
    return region_.get<std::uint64_t>(offsetOf(point) + field::pointAt);
}

unsigned RawUnit::typeOf(long long point) const {
    return region_.get<std::uint8_t>(offsetOf(point) + field::pointType);
}

std::int32_t RawUnit::globalState() const {
    return region_.get<std::int32_t>(field::rootState);
}

unsigned RawUnit::version() const {
    return region_.get<std::uint8_t>(field::version);
}

} // namespace qel::test

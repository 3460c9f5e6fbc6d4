// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/tools/replay/RawUnit.h"

#include "format/HexText.h"
#include "region/SvidParts.h"

#include <stdexcept>

namespace qel::test {

namespace {

// Offsets within the records, written down once more on purpose.
constexpr std::uint32_t pointCount = 800;
constexpr std::uint32_t valueCount = 8800;
constexpr std::size_t next = 4;
constexpr std::size_t mvs = 12;
constexpr std::size_t children = 16;
constexpr std::size_t guid = 24;
constexpr std::size_t pointTime = 32;
constexpr std::size_t pointState = 40;
constexpr std::size_t pointType = 44;
constexpr std::size_t valueTime = 8;
constexpr std::size_t valueState = 16;
constexpr std::size_t valueNext = 20;
constexpr std::size_t valueKey = 24;
constexpr std::size_t rootDevices = rawRootOffset + 16;
constexpr std::size_t rootGroups = rawRootOffset + 20;
constexpr std::size_t rootState = rawRootOffset + 24;
constexpr std::size_t rootVersion = rawRootOffset + 28;

} // namespace

template <typename Visit>
void RawUnit::walk(std::uint32_t position, Visit const& visit) const {
    for (; position < pointCount; position = region_.u32(rawPoint(position) + next)) {
        visit(rawPoint(position));
        walk(region_.u32(rawPoint(position) + children), visit);
    }
}

template <typename Visit>
void RawUnit::walkAll(Visit const& visit) const {
    walk(region_.u32(rootDevices), visit);
    walk(region_.u32(rootGroups), visit);
}

std::set<long long> RawUnit::points() const {
    std::set<long long> svids;
    walkAll([&](std::size_t point) { svids.insert(region_.get<std::int64_t>(point + guid)); });
    return svids;
}

std::set<long long> RawUnit::values() const {
    std::set<long long> svids;
    walkAll([&](std::size_t point) {
        auto const svid = region_.get<std::int64_t>(point + guid);
        for (auto value = region_.u32(point + mvs); value < valueCount;
             value = region_.u32(rawValue(value) + valueNext)) {
            svids.insert(svid | region_.get<std::uint16_t>(rawValue(value) + valueKey));
        }
    });
    return svids;
}

std::size_t RawUnit::offsetOf(long long point) const {
    std::optional<std::size_t> found;
    walkAll([&](std::size_t candidate) {
        if (region_.get<std::int64_t>(candidate + guid) == point) {
            found = candidate;
        }
    });
    return found ? *found : throw std::out_of_range("there is no point " + shm::svidText(point));
}

std::optional<RawReading> RawUnit::value(long long svid) const {
    if (values().count(svid) == 0) {
        return std::nullopt;
    }
    auto position = region_.u32(offsetOf(shm::pointSvid(svid)) + mvs);
    while (region_.get<std::uint16_t>(rawValue(position) + valueKey) != (svid & 0xFFFF)) {
        position = region_.u32(rawValue(position) + valueNext);
    }
    auto const slot = rawValue(position);
    return RawReading{region_.get<double>(slot), region_.get<std::uint64_t>(slot + valueTime),
                      region_.get<std::int32_t>(slot + valueState)};
}

std::int32_t RawUnit::stateOf(long long point) const {
    return region_.get<std::int32_t>(offsetOf(point) + pointState);
}

std::uint64_t RawUnit::timeOf(long long point) const {
    return region_.get<std::uint64_t>(offsetOf(point) + pointTime);
}

unsigned RawUnit::typeOf(long long point) const {
    return region_.get<std::uint8_t>(offsetOf(point) + pointType);
}

std::int32_t RawUnit::globalState() const {
    return region_.get<std::int32_t>(rootState);
}

unsigned RawUnit::version() const {
    return region_.get<std::uint8_t>(rootVersion);
}

} // namespace qel::test

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The fields of the region by name and place.
#pragma once

#include "region/QelShmRecords.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qel::inspect {

/// What a field belongs to.
enum class Place : std::uint8_t {
    Region, ///< all of the bytes
    Root,
    Point,
    Value,
    Object, ///< the object that holds the region, as the system knows it
};

struct RegionField {
    Place place;
    std::string_view name; ///< as the layout calls it; "size" of the region
    std::size_t offset;    ///< within the record; of the object, a number that tells its fields apart
};

constexpr bool operator==(RegionField const& left, RegionField const& right) {
    return left.place == right.place && left.offset == right.offset;
}

namespace field {

using shm::record::QelShmMP;
using shm::record::QelShmMVal;
using shm::record::QelShmRoot;

inline constexpr RegionField size{Place::Region, "size", 0};

inline constexpr RegionField rootGuid{Place::Root, "guid", offsetof(QelShmRoot, guid)};
inline constexpr RegionField rootUnused{Place::Root, "unused", offsetof(QelShmRoot, unused)};
inline constexpr RegionField devices{Place::Root, "devices", offsetof(QelShmRoot, devices)};
inline constexpr RegionField groups{Place::Root, "groups", offsetof(QelShmRoot, groups)};
inline constexpr RegionField rootState{Place::Root, "state", offsetof(QelShmRoot, state)};
inline constexpr RegionField version{Place::Root, "version", offsetof(QelShmRoot, version)};
inline constexpr RegionField rootReserved{Place::Root, "reserved", offsetof(QelShmRoot, reserved)};

inline constexpr RegionField pos{Place::Point, "pos", offsetof(QelShmMP, pos)};
inline constexpr RegionField next{Place::Point, "next", offsetof(QelShmMP, next)};
inline constexpr RegionField prev{Place::Point, "prev", offsetof(QelShmMP, prev)};
inline constexpr RegionField mvs{Place::Point, "mvs", offsetof(QelShmMP, mvs)};
inline constexpr RegionField children{Place::Point, "children", offsetof(QelShmMP, children)};
inline constexpr RegionField parent{Place::Point, "parent", offsetof(QelShmMP, parent)};
inline constexpr RegionField guid{Place::Point, "guid", offsetof(QelShmMP, guid)};
inline constexpr RegionField pointState{Place::Point, "state", offsetof(QelShmMP, state)};
inline constexpr RegionField pointReserved{Place::Point, "reserved", offsetof(QelShmMP, reserved)};

inline constexpr RegionField number{Place::Value, "value", offsetof(QelShmMVal, value)};
inline constexpr RegionField valueState{Place::Value, "state", offsetof(QelShmMVal, state)};
inline constexpr RegionField valueNext{Place::Value, "next", offsetof(QelShmMVal, next)};
inline constexpr RegionField key{Place::Value, "key", offsetof(QelShmMVal, key)};
inline constexpr RegionField valueReserved{Place::Value, "reserved", offsetof(QelShmMVal, reserved)};

inline constexpr RegionField owner{Place::Object, "owner", 0};
inline constexpr RegionField mode{Place::Object, "mode", 1};
inline constexpr RegionField names{Place::Object, "names", 2};

} // namespace field

/// Where a field stands in the region, in bytes from its start.
/// @param pos the slot of a point or a value, else not looked at
constexpr std::uint64_t regionOffset(RegionField const& field, std::uint32_t pos) {
    switch (field.place) {
    case Place::Root:
        return offsetof(shm::record::Region, root) + field.offset;
    case Place::Point:
        return std::uint64_t{pos} * sizeof(shm::record::QelShmMP) + field.offset;
    case Place::Value:
        return offsetof(shm::record::Region, values) + std::uint64_t{pos} * sizeof(shm::record::QelShmMVal) +
               field.offset;
    case Place::Region:
    case Place::Object:
        return 0;
    }
    return 0;
}

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The fields of the region, and what they hold.
#pragma once

#include "domain/eStatus_Bits.h"
#include "region/QelShmRecords.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace qel::inspect {

/// What a field belongs to.
enum class Place : std::uint8_t {
    Region, ///< the region as a whole
    Root,
    Point,
    Value,
    Object, ///< the object that holds the region, as the system knows it
};

/// One field of a record, of the region or of the object.
struct RegionField {
    Place place;
    std::string_view name; ///< as in the layout; "size", "owner", ... where it is no field of a record
    std::size_t offset;    ///< in the record; a number of its own for each field of the object
};

/// Whether both are the same field. Reentrant.
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
inline constexpr RegionField pointAt{Place::Point, "at", offsetof(QelShmMP, at)};
inline constexpr RegionField pointState{Place::Point, "state", offsetof(QelShmMP, state)};
inline constexpr RegionField pointReserved{Place::Point, "reserved", offsetof(QelShmMP, reserved)};

inline constexpr RegionField number{Place::Value, "value", offsetof(QelShmMVal, value)};
inline constexpr RegionField valueAt{Place::Value, "at", offsetof(QelShmMVal, at)};
inline constexpr RegionField valueState{Place::Value, "state", offsetof(QelShmMVal, state)};
inline constexpr RegionField valueNext{Place::Value, "next", offsetof(QelShmMVal, next)};
inline constexpr RegionField key{Place::Value, "key", offsetof(QelShmMVal, key)};
inline constexpr RegionField valueReserved{Place::Value, "reserved", offsetof(QelShmMVal, reserved)};

inline constexpr RegionField owner{Place::Object, "owner", 0};
inline constexpr RegionField mode{Place::Object, "mode", 1};
inline constexpr RegionField names{Place::Object, "names", 2};

} // namespace field

/// The offset of a field from the region's start, in bytes; 0 for fields of region and object. Reentrant.
/// @param pos the slot of a point or value, ignored for others
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

/// The content of a field: a number and its notation, or words where a range of numbers is meant. Small and cheap to
/// make; the text is made only when it is asked for.
///
/// Threads: thread-safe.
class FieldValue {
public:
    /// monostate for words.
    using Number = std::variant<std::monostate, std::int64_t, std::uint64_t, double>;

    /// "slot 17", "none" for NO_POSITION.
    static FieldValue position(std::uint32_t pos);
    /// "0x0100ffffffff0000".
    static FieldValue svid(std::int64_t svid);
    /// "High Alarm (1)".
    static FieldValue state(eStatus_Bits state);
    /// "0x20".
    static FieldValue byte(std::uint8_t byte);
    /// "0x0013".
    static FieldValue key(std::uint16_t key);
    /// "320032".
    static FieldValue count(std::uint64_t count);
    /// "230.1", the shortest text that reads back as the same number; "nan", "-inf".
    static FieldValue number(double number);
    /// "nobody (65534)", "65534" for a user without a name.
    static FieldValue user(std::uint32_t uid);
    /// Permission bits as "rw-r--r--".
    static FieldValue mode(std::uint32_t mode);
    /// @param words not copied: must live as long as the process
    static FieldValue words(char const* words);

    /// The number for programs.
    Number const& number() const { return number_; }

    /// The text for people, one line without its end.
    std::string text() const;

private:
    enum class Notation : std::uint8_t { Position, Svid, State, Byte, Key, Decimal, User, Mode, Words };

    FieldValue(Number number, Notation notation) : number_(number), notation_(notation) {}

    Number number_;
    Notation notation_;
    char const* words_ = "";
};

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The fields of the region's records as data: what `layout.json` and the documents say of the layout comes from here.
#pragma once

#include "domain/SensorType.h"
#include "domain/eStatus_Bits.h"
#include "region/QelShmRecords.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <type_traits>

namespace shm::record {

/// How the bytes of a member are read: "u8" to "u64" unsigned, "i32" and "i64" signed integers, "f64" an IEEE 754
/// double, "bytes" for no number at all. Constant expression.
template <typename Record, typename Member>
constexpr char const* fieldType(Member Record::* /*member*/) {
    if constexpr (std::is_array_v<Member>) {
        return "bytes";
    } else if constexpr (std::is_floating_point_v<Member>) {
        static_assert(sizeof(Member) == 8);
        return "f64";
    } else if constexpr (std::is_signed_v<Member> || std::is_same_v<Member, eStatus_Bits>) {
        static_assert(sizeof(Member) == 4 || sizeof(Member) == 8);
        return sizeof(Member) == 4 ? "i32" : "i64";
    } else {
        static_assert(std::is_unsigned_v<Member> && sizeof(Member) <= 8);
        return sizeof(Member) == 1 ? "u8" : sizeof(Member) == 2 ? "u16" : sizeof(Member) == 4 ? "u32" : "u64";
    }
}
static_assert(std::is_same_v<std::underlying_type_t<eStatus_Bits>, std::int32_t>);

/// One field of a record.
///
/// Threads: reentrant.
struct FieldRow {
    char const* name = nullptr;
    std::size_t offset = 0;     ///< from the record's first byte
    std::size_t size = 0;       ///< in bytes
    char const* type = nullptr; ///< see fieldType()
    /// At most 42 characters, which is a line of the manual page, without a full stop.
    char const* meaning = nullptr;
    /// The number that means "none"; empty for a field that has none.
    std::optional<std::int64_t> none = std::nullopt;
    /// Content once its slot or the root is set up: "none", a number first, or words.
    char const* initially = nullptr;
    char const* writtenBy = nullptr; ///< the writer's operations that change it
};

/// One table of the region.
///
/// Threads: reentrant.
struct TableRow {
    char const* name;
    char const* record; ///< what one slot holds
    std::size_t offset; ///< from the region's first byte
    std::size_t count;  ///< slots
    std::size_t size;   ///< of one slot, in bytes
};

/// Whether the fields, in their order, cover each byte of a record once. Constant expression.
template <std::size_t rowCount>
constexpr bool coversRecord(std::array<FieldRow, rowCount> const& fields, std::size_t recordSize) {
    std::size_t end = 0;
    for (auto const& field : fields) {
        if (field.offset != end || field.size == 0) {
            return false;
        }
        end += field.size;
    }
    return end == recordSize;
}

/// Whether the tables, in their order, cover each byte of the region once. Constant expression.
template <std::size_t rowCount>
constexpr bool coversRegion(std::array<TableRow, rowCount> const& tables, std::size_t regionSize) {
    std::size_t end = 0;
    for (auto const& table : tables) {
        if (table.offset != end || table.count == 0) {
            return false;
        }
        end += table.count * table.size;
    }
    return end == regionSize;
}

// Name, offset, size and type of a member: none of them can be another member's.
#define QEL_FIELD(Record, member)                                                                            \
#member, offsetof(Record, member), sizeof(Record::member), fieldType(&Record::member)

inline constexpr std::optional<std::int64_t> always = std::nullopt; ///< a field that has no "none"

inline constexpr std::array<FieldRow, 11> pointFields{{
    {QEL_FIELD(QelShmMP, pos), "own position", always, "its position", "initialisation"},
    {QEL_FIELD(QelShmMP, next), "next sibling", NO_POSITION, "none", "linking"},
    {QEL_FIELD(QelShmMP, prev), "previous sibling", NO_POSITION, "none", "linking"},
    {QEL_FIELD(QelShmMP, mvs), "first value of the point's chain", NO_POSITION, "none", "adding values"},
    {QEL_FIELD(QelShmMP, children), "first child", NO_POSITION, "none", "linking"},
    {QEL_FIELD(QelShmMP, parent), "parent; none at the top level", NO_POSITION, "its parent",
     "initialisation"},
    {QEL_FIELD(QelShmMP, guid), "sensor id, low 16 bits zero", always, "its sensor id", "initialisation"},
    {QEL_FIELD(QelShmMP, at), "time of its own state, ms since 1970 UTC", 0, "0", "value updates"},
    {QEL_FIELD(QelShmMP, state), "state, with its values and children", always, "17 (On)",
     "updates, propagation"},
    {QEL_FIELD(QelShmMP, type), "type code; its meaning depends on the id", always, "0; 1 for kinds 2 and 4",
     "type injection"},
    {QEL_FIELD(QelShmMP, reserved), "left at 0xFF", always, "0xFF", "nobody"},
}};
static_assert(coversRecord(pointFields, sizeof(QelShmMP)));

inline constexpr std::array<FieldRow, 6> valueFields{{
    {QEL_FIELD(QelShmMVal, value), "the number; its key says unit and factor", always, "0", "value updates"},
    {QEL_FIELD(QelShmMVal, at), "time of the value, ms since 1970 UTC", 0, "0", "value updates"},
    {QEL_FIELD(QelShmMVal, state), "state of the value", eStatus_ExpectedValue, "-2 (Expected Value)",
     "value updates"},
    {QEL_FIELD(QelShmMVal, next), "next value of the same point", NO_POSITION, "none", "adding values"},
    {QEL_FIELD(QelShmMVal, key), "low 16 bits of the value's sensor id", NO_KEY, "its key", "initialisation"},
    {QEL_FIELD(QelShmMVal, reserved), "left at 0xFF", always, "0xFF", "nobody"},
}};
static_assert(coversRecord(valueFields, sizeof(QelShmMVal)));

inline constexpr std::array<FieldRow, 7> rootFields{{
    {QEL_FIELD(QelShmRoot, guid), "the root's own sensor id, of no point", always, "0xFF00FFFFFFFF0000",
     "activation"},
    {QEL_FIELD(QelShmRoot, unused), "read by nobody", always, "0", "activation"},
    {QEL_FIELD(QelShmRoot, devices), "first top-level point of kind 0", NO_POSITION, "none", "linking"},
    {QEL_FIELD(QelShmRoot, groups), "first top-level point of kind 2", NO_POSITION, "none", "linking"},
    {QEL_FIELD(QelShmRoot, state), "global state", always, "17 (On)", "activation, propagation"},
    {QEL_FIELD(QelShmRoot, version), "layout version; 32 while active", WIPE_BYTE, "32", "activation, last"},
    {QEL_FIELD(QelShmRoot, reserved), "left at 0xFF", always, "0xFF", "nobody"},
}};
static_assert(coversRecord(rootFields, sizeof(QelShmRoot)));

#undef QEL_FIELD

inline constexpr std::array<TableRow, 3> regionTables{{
    {"points", "point", offsetof(Region, points), MP_COUNT, sizeof(QelShmMP)},
    {"values", "value", offsetof(Region, values), MV_COUNT, sizeof(QelShmMVal)},
    {"root", "root", offsetof(Region, root), 1, sizeof(QelShmRoot)},
}};
static_assert(coversRegion(regionTables, sizeof(Region)));

// What the words above name by number.
static_assert(eStatus_On == 17 && eStatus_ExpectedValue == -2 && ACTIVE_VERSION == 32 && WIPE_BYTE == 0xFF);
static_assert(SensorType::Electrical == 0 && SensorType::SocketGroup == 2 && SensorType::RCM == 4);
static_assert(ROOT_SVID == static_cast<long long>(0xFF00FFFFFFFF0000ULL));

} // namespace shm::record

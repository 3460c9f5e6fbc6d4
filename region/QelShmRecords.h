// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The byte layout of the shared-memory region. The writing process and every reader rely on it.
///
/// One POSIX shared-memory object named "QelSharedMemory", 320032 bytes, little-endian, natural alignment:
///
///     offset       0          38400                      320000        320032
///                  +-----------+--------------------------+-------------+
///                  | points    | values                   | root        |
///                  | 800 x 48  | 8800 x 32                | 32          |
///                  +-----------+--------------------------+-------------+
///
/// Slots refer to each other by position (slot index), never by address, so every process may map the region
/// anywhere. A position is valid below the number of slots. Any other number, such as NO_POSITION, means "none". A
/// created or wiped region holds 0xFF in every byte.
///
/// Threads: reentrant. The records are plain data.
///
/// No lock guards the data between processes. A reader may see a slot half written: a value's time and state
/// may be new while its number is still old, and a list that is being re-linked may be seen half-changed. The only
/// order to rely on is that the root's version is written after everything it announces.
///
/// The same tables for readers in other languages: docs/reference/region-layout.md.
#pragma once

#include "domain/eStatus_Bits.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

/// The shared-memory data plane.
namespace shm {

/// Name of the object for shm_open and shm_unlink (POSIX).
// Deliberate: no leading slash.
constexpr char REGION_NAME[] = "QelSharedMemory";

/// Number of slots for measurement points. It never grows.
constexpr std::uint32_t MP_COUNT = 800;
/// Number of slots for measured values. It never grows.
constexpr std::uint32_t MV_COUNT = 8800;

/// "No slot" in every field that holds a position.
constexpr std::uint32_t NO_POSITION = 0xFFFFFFFF;

/// Key of a slot that holds no value.
constexpr std::uint16_t NO_KEY = 0xFFFF;

/// The root's own sensor id. No point has it.
constexpr long long ROOT_SVID = static_cast<long long>(0xFF00FFFFFFFF0000ULL);

/// The root's version byte while the region is active.
constexpr std::uint8_t ACTIVE_VERSION = 32;
/// The byte that fills a wiped region.
constexpr std::uint8_t WIPE_BYTE = 0xFF;

/// The region's records, byte for byte.
namespace record {

/// A measurement point, 48 bytes.
///
/// | offset | width | field    | meaning                                            | initially  | written by             |
/// |--------|-------|----------|----------------------------------------------------|------------|------------------------|
/// | 0      | u32   | pos      | the slot's own position                            | position   | initialisation         |
/// | 4      | u32   | next     | next sibling's position                            | none       | linking                |
/// | 8      | u32   | prev     | previous sibling's position                        | none       | linking                |
/// | 12     | u32   | mvs      | position of the first value of the point's chain   | none       | adding values          |
/// | 16     | u32   | children | position of the first child                        | none       | linking                |
/// | 20     | u32   | parent   | parent's position; none for a top-level point      | parent     | initialisation         |
/// | 24     | i64   | guid     | sensor id, low 16 bits zero                        | sensor id  | initialisation         |
/// | 32     | u64   | at       | time of the point's own state, as delivered        | 0          | value updates          |
/// | 40     | i32   | state    | eStatus_Bits                                       | 17 ("On")  | updates, propagation   |
/// | 44     | u8    | type     | sub-type code, meaning depends on the kind         | 0 or 1     | type injection         |
/// | 45     | 3     | reserved | left at 0xFF                                       | 0xFF       | nobody                 |
struct QelShmMP {
    /// @{
    /// A field of the record: see its table.
    std::uint32_t pos;
    std::uint32_t next;
    std::uint32_t prev;
    std::uint32_t mvs;
    std::uint32_t children;
    std::uint32_t parent;
    std::int64_t guid;
    std::uint64_t at;
    eStatus_Bits state;
    std::uint8_t type;
    std::uint8_t reserved[3];
    /// @}
};
static_assert(sizeof(QelShmMP) == 48);
static_assert(offsetof(QelShmMP, pos) == 0);
static_assert(offsetof(QelShmMP, next) == 4);
static_assert(offsetof(QelShmMP, prev) == 8);
static_assert(offsetof(QelShmMP, mvs) == 12);
static_assert(offsetof(QelShmMP, children) == 16);
static_assert(offsetof(QelShmMP, parent) == 20);
static_assert(offsetof(QelShmMP, guid) == 24);
static_assert(offsetof(QelShmMP, at) == 32);
static_assert(offsetof(QelShmMP, state) == 40);
static_assert(offsetof(QelShmMP, type) == 44);
static_assert(offsetof(QelShmMP, reserved) == 45);
static_assert(std::is_standard_layout_v<QelShmMP> && std::is_trivially_copyable_v<QelShmMP>);

/// A measured value, 32 bytes.
///
/// | offset | width | field    | meaning                                            | initially  | written by             |
/// |--------|-------|----------|----------------------------------------------------|------------|------------------------|
/// | 0      | f64   | value    | IEEE 754 double; unit by key, see ValueFormatter   | 0.0        | value updates          |
/// | 8      | u64   | at       | time of the value, as delivered                    | 0          | value updates          |
/// | 16     | i32   | state    | eStatus_Bits                                       | -2         | value updates          |
/// | 20     | u32   | next     | next value of the same point                       | none       | adding values          |
/// | 24     | u16   | key      | what the value is: the low 16 bits of its id       | key        | initialisation         |
/// | 26     | 6     | reserved | left at 0xFF                                       | 0xFF       | nobody                 |
struct QelShmMVal {
    /// @{
    /// A field of the record: see its table.
    double value;
    std::uint64_t at;
    eStatus_Bits state;
    std::uint32_t next;
    std::uint16_t key;
    std::uint8_t reserved[6];
    /// @}
};
static_assert(sizeof(double) == 8);
static_assert(sizeof(QelShmMVal) == 32);
static_assert(offsetof(QelShmMVal, value) == 0);
static_assert(offsetof(QelShmMVal, at) == 8);
static_assert(offsetof(QelShmMVal, state) == 16);
static_assert(offsetof(QelShmMVal, next) == 20);
static_assert(offsetof(QelShmMVal, key) == 24);
static_assert(offsetof(QelShmMVal, reserved) == 26);
static_assert(std::is_standard_layout_v<QelShmMVal> && std::is_trivially_copyable_v<QelShmMVal>);

/// The root, 32 bytes, after all slots.
///
/// | offset | width | field    | meaning                                            | initially  | written by             |
/// |--------|-------|----------|----------------------------------------------------|------------|------------------------|
/// | 0      | i64   | guid     | 0xFF00FFFFFFFF0000 once active                     | 0xFF...    | activation             |
/// | 8      | u64   | unused   | 0 once active, read by nobody                      | 0xFF...    | activation             |
/// | 16     | u32   | devices  | first top-level point of sensor type 0             | none       | linking                |
/// | 20     | u32   | groups   | first top-level point of sensor type 2             | none       | linking                |
/// | 24     | i32   | state    | global state, eStatus_Bits; 17 at activation       | -1         | activation, propagation|
/// | 28     | u8    | version  | 32 once active; everything else means "not yet"    | 0xFF       | activation, last       |
/// | 29     | 3     | reserved | left at 0xFF                                       | 0xFF       | nobody                 |
struct QelShmRoot {
    /// @{
    /// A field of the record: see its table.
    std::int64_t guid;
    std::uint64_t unused;
    std::uint32_t devices;
    std::uint32_t groups;
    eStatus_Bits state;
    std::uint8_t version;
    std::uint8_t reserved[3];
    /// @}
};
static_assert(sizeof(QelShmRoot) == 32);
static_assert(offsetof(QelShmRoot, guid) == 0);
static_assert(offsetof(QelShmRoot, unused) == 8);
static_assert(offsetof(QelShmRoot, devices) == 16);
static_assert(offsetof(QelShmRoot, groups) == 20);
static_assert(offsetof(QelShmRoot, state) == 24);
static_assert(offsetof(QelShmRoot, version) == 28);
static_assert(offsetof(QelShmRoot, reserved) == 29);
static_assert(std::is_standard_layout_v<QelShmRoot> && std::is_trivially_copyable_v<QelShmRoot>);

/// The whole region. The point at position p is points[p], the value at position m is values[m].
struct Region {
    QelShmMP points[MP_COUNT];   ///< slots of points
    QelShmMVal values[MV_COUNT]; ///< slots of values
    QelShmRoot root;             ///< the root
};
static_assert(offsetof(Region, points) == 0);
static_assert(offsetof(Region, values) == 38400);
static_assert(offsetof(Region, root) == 320000);
static_assert(sizeof(Region) == 320032);
static_assert(std::is_standard_layout_v<Region> && std::is_trivially_copyable_v<Region>);

} // namespace record

/// The point's record. The other two records keep the prefix `record`, since handles of this namespace have their
/// names.
using QelShmMP = record::QelShmMP;

/// Size of the shared-memory object in bytes.
constexpr std::size_t REGION_SIZE = sizeof(record::Region);

} // namespace shm

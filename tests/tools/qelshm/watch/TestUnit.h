// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A unit in memory, for tests that need no shared memory.
#pragma once

#include "tools/qelshm/watch/SnapshotSource.h"

#include "format/ValueKeys.h"
#include "inspect/image/Image.h"
#include "region/QelShmRecords.h"

#include <cstdint>

namespace qel::test {

constexpr long long unitId = 0x0100FFFFFFFF0000;
constexpr long long inletId = 0x010001FFFFFF0000;
constexpr long long socket2Id = 0x010001FFFF020000;
constexpr long long socket10Id = 0x010001FFFF0A0000;

constexpr std::uint16_t voltage = shm::key::voltage;
constexpr std::uint16_t activePower = shm::key::activePower;

/// Builds a region's records by hand; active and without a point at first. Reentrant.
class TestUnit {
public:
    TestUnit();

    /// Appends a point to its parent's children, to the devices without one. Its state is "On".
    /// @return its position
    std::uint32_t point(long long svid, std::uint32_t parent = shm::NO_POSITION);

    /// Appends a value to a point's chain: 0, "No Error", never delivered.
    /// @return its position
    std::uint32_t value(std::uint32_t point, std::uint16_t key);

    /// Takes the last child of a point out of its list.
    void removeLastChild(std::uint32_t parent);

    /// Delivers a number with a state.
    void deliver(std::uint32_t value, double number, std::uint64_t at, eStatus_Bits state = eStatus_NoError);

    shm::record::Region& region() { return region_; }

    inspect::Image image() const;
    watch::Snapshot snapshot(std::uint64_t ticks, unsigned objects = 1) const;

private:
    shm::record::Region region_{};
    std::uint32_t points_ = 0;
    std::uint32_t values_ = 0;
};

/// unit1 > inlet1 (voltage, active power) > socket10 (active power), socket2 (active power, voltage).
struct SmallUnit : TestUnit {
    SmallUnit();

    std::uint32_t unit;
    std::uint32_t inlet;
    std::uint32_t socket10;
    std::uint32_t socket2;
    std::uint32_t inletVoltage;
    std::uint32_t inletPower;
    std::uint32_t socket10Power;
    std::uint32_t socket2Power;
    std::uint32_t socket2Voltage;
};

} // namespace qel::test

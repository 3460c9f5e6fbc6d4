// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/tools/qelshm/watch/TestUnit.h"

#include <cstring>

namespace qel::test {

namespace {

constexpr std::uint64_t startOfDay = 1686268800000; // 2023-06-09T00:00:00Z

} // namespace

TestUnit::TestUnit() {
    std::memset(static_cast<void*>(&region_), shm::WIPE_BYTE, sizeof region_);
    region_.root.version = shm::ACTIVE_VERSION;
    region_.root.state = eStatus_On;
}

std::uint32_t TestUnit::point(long long svid, std::uint32_t parent) {
    auto const pos = points_++;
    auto* link = parent == shm::NO_POSITION ? &region_.root.devices : &region_.points[parent].children;
    while (*link != shm::NO_POSITION) {
        link = &region_.points[*link].next;
    }
    *link = pos;
    region_.points[pos].pos = pos;
    region_.points[pos].parent = parent;
    region_.points[pos].guid = svid;
    region_.points[pos].at = 0;
    region_.points[pos].state = eStatus_On;
    region_.points[pos].type = 0;
    return pos;
}

std::uint32_t TestUnit::value(std::uint32_t point, std::uint16_t key) {
    auto const pos = values_++;
    auto* link = &region_.points[point].mvs;
    while (*link != shm::NO_POSITION) {
        link = &region_.values[*link].next;
    }
    *link = pos;
    region_.values[pos].key = key;
    deliver(pos, 0.0, 0);
    return pos;
}

void TestUnit::removeLastChild(std::uint32_t parent) {
    auto* link = &region_.points[parent].children;
    while (region_.points[*link].next != shm::NO_POSITION) {
        link = &region_.points[*link].next;
    }
    *link = shm::NO_POSITION;
}

void TestUnit::deliver(std::uint32_t value, double number, std::uint64_t at, eStatus_Bits state) {
    region_.values[value].value = number;
    region_.values[value].at = at;
    region_.values[value].state = state;
}

inspect::Image TestUnit::image() const {
    return {&region_, sizeof region_};
}

watch::Snapshot TestUnit::snapshot(std::uint64_t ticks, unsigned objects) const {
    return {image(), {}, objects, startOfDay + ticks, ticks};
}

SmallUnit::SmallUnit()
    : unit(point(unitId)),
      inlet(point(inletId, unit)),
      socket10(point(socket10Id, inlet)),
      socket2(point(socket2Id, inlet)),
      inletVoltage(value(inlet, voltage)),
      inletPower(value(inlet, activePower)),
      socket10Power(value(socket10, activePower)),
      socket2Power(value(socket2, activePower)),
      socket2Voltage(value(socket2, voltage)) {
    constexpr std::uint8_t master = 2;
    constexpr std::uint8_t onePhase = 1;
    region().points[unit].type = master;
    region().points[inlet].type = onePhase;
}

} // namespace qel::test

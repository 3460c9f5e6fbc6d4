// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/unit/Topology.h"

#include "format/ValueKeys.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace qel::tools {

namespace key = shm::key;

namespace {

// Each circuit holds the outlets that one analyser measured: A 3 and 6, B 1, 2, 4 and 5, C 7 to 10.
constexpr unsigned circuitA = 1;
constexpr unsigned circuitB = 2;
constexpr unsigned circuitC = circuitCount;
constexpr std::array<unsigned, outletCount> circuits{circuitB, circuitB, circuitA, circuitB, circuitB,
                                                     circuitA, circuitC, circuitC, circuitC, circuitC};

struct KindRow {
    PointKind kind;
    unsigned short stateKey;
    int type;
};

constexpr std::array<KindRow, 7> kinds{{
    {PointKind::Unit, key::pduState, 2},          // "Master"
    {PointKind::Inlet, key::state, 1},            // "1P"
    {PointKind::Circuit, key::circuitState, 21},  // "16A;C"
    {PointKind::Phase, key::phaseState, 1},       // "Phase"
    {PointKind::Socket, key::socket, 30},         // "Schuko"
    {PointKind::Sensor, key::sensorState, 2},     // "I2C Temperature-Humidity Sensor"
    {PointKind::Group, key::socketGroupState, 1}, // "SG"
}};

constexpr bool rowsFollowTheEnumeration() {
    for (std::size_t row = 0; row < kinds.size(); ++row) {
        if (static_cast<std::size_t>(kinds[row].kind) != row) {
            return false;
        }
    }
    return kinds.size() == static_cast<std::size_t>(PointKind::Group) + 1;
}
static_assert(rowsFollowTheEnumeration());

constexpr int threePhaseInletType = 4; // "4PWYE"

KindRow const& rowOf(PointKind kind) {
    return kinds.at(static_cast<std::size_t>(kind));
}

// The six levels of a sensor id, highest byte first.
constexpr std::uint64_t unused = 0xFF;
constexpr std::uint64_t electrical = 0;
constexpr std::uint64_t i2c = 1;
constexpr std::uint64_t group = 2;
constexpr std::uint64_t sensorBus = 1;

long long svid(std::array<std::uint64_t, 6> const& levels) {
    std::uint64_t bits = 0;
    for (auto const level : levels) {
        bits = bits << 8U | level;
    }
    bits <<= 16U; // no key
    return static_cast<long long>(bits);
}

} // namespace

std::optional<PointId> parentPoint(PointId const& point) {
    switch (point.kind) {
    case PointKind::Unit:
    case PointKind::Group:
        return std::nullopt;
    case PointKind::Inlet:
    case PointKind::Sensor:
        return unitPoint;
    case PointKind::Circuit:
        return singlePhaseInlet;
    case PointKind::Phase:
        return threePhaseInlet;
    case PointKind::Socket:
        return PointId{PointKind::Circuit, circuitOfOutlet(point.number)};
    }
    return std::nullopt;
}

unsigned circuitOfOutlet(unsigned outlet) {
    return circuits.at(outlet - 1);
}

std::vector<unsigned> outletsOfCircuit(unsigned circuit) {
    std::vector<unsigned> outlets;
    for (unsigned outlet = 1; outlet <= outletCount; ++outlet) {
        if (circuitOfOutlet(outlet) == circuit) {
            outlets.push_back(outlet);
        }
    }
    return outlets;
}

long long pointSvid(PointId const& point) {
    constexpr auto device = unitPoint.number;
    switch (point.kind) {
    case PointKind::Unit:
        return svid({device, electrical, unused, unused, unused, unused});
    case PointKind::Inlet:
        return svid({device, electrical, point.number, unused, unused, unused});
    case PointKind::Circuit:
        return svid({device, electrical, singlePhaseInlet.number, unused, point.number, unused});
    case PointKind::Phase:
        return svid({device, electrical, threePhaseInlet.number, point.number, unused, unused});
    case PointKind::Socket:
        return svid({device, electrical, singlePhaseInlet.number, unused, circuitOfOutlet(point.number),
                     point.number});
    case PointKind::Sensor:
        return svid({device, i2c, sensorBus, point.number, unused, unused});
    case PointKind::Group:
        // Without an inlet, so that it is a top-level point.
        return svid({device, group, unused, unused, unused, point.number});
    }
    return -1;
}

unsigned short stateKey(PointKind kind) {
    return rowOf(kind).stateKey;
}

int typeCode(PointId const& point) {
    return point == threePhaseInlet ? threePhaseInletType : rowOf(point.kind).type;
}

} // namespace qel::tools

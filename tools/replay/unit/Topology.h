// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The points of the unit: how they are connected, and their sensor ids. All functions are reentrant.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace qel::tools {

enum class PointKind : std::uint8_t { Unit, Inlet, Circuit, Phase, Socket, Sensor, Group };

/// A point by its kind and its number, which counts from 1 within the kind.
struct PointId {
    PointKind kind;
    unsigned number;
};

constexpr bool operator==(PointId const& left, PointId const& right) {
    return left.kind == right.kind && left.number == right.number;
}

/// The only unit, first component of all sensor ids.
constexpr PointId unitPoint{PointKind::Unit, 1};

/// The inlet that feeds the circuits, and the three-phase feed beside it.
constexpr PointId singlePhaseInlet{PointKind::Inlet, 1};
constexpr PointId threePhaseInlet{PointKind::Inlet, 2};

/// Circuits and outlets count from 1 to these.
constexpr unsigned circuitCount = 3;
constexpr unsigned outletCount = 10;

/// The temperature-humidity sensor.
constexpr PointId sensorPoint{PointKind::Sensor, 1};

/// Outlets that the socket group joins.
constexpr PointId socketGroup{PointKind::Group, 1};
constexpr std::array<unsigned, 3> groupedOutlets{1, 2, 3};

/// The point above: socket - circuit - inlet 1 - unit; phase - inlet 2 - unit; sensor - unit.
/// @return none for the unit and for a group
/// @throws std::out_of_range for an outlet that does not exist
std::optional<PointId> parentPoint(PointId const& point);

/// Circuit of an outlet; both count from 1.
/// @throws std::out_of_range for an outlet that does not exist
unsigned circuitOfOutlet(unsigned outlet);

/// Outlets of a circuit, ascending.
std::vector<unsigned> outletsOfCircuit(unsigned circuit);

/// Sensor id of a point, low 16 bits zero.
long long pointSvid(PointId const& point);

/// Key of the point-level value that carries the point's own state.
unsigned short stateKey(PointKind kind);

/// Sub-type code of a point: a master unit, single-phase and three-phase inlet, 16 A fuses, Schuko sockets,
/// ...
int typeCode(PointId const& point);

} // namespace qel::tools

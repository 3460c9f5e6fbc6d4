// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The points that recordings speak of.
#pragma once

#include <cstdint>

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

} // namespace qel::tools

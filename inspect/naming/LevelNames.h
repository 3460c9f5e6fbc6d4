// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the levels of a sensor id are called.
#pragma once

#include "domain/SensorIdentifier.h"

#include <array>
#include <string_view>

namespace qel::inspect {

struct LevelName {
    SensorIdentifier::Part part;
    std::string_view name;
};

/// The levels below the device, highest first.
inline constexpr std::array<LevelName, 4> levelNames{{{SensorIdentifier::Inlet, "inlet"},
                                                      {SensorIdentifier::Phase, "phase"},
                                                      {SensorIdentifier::Circuit, "circuit"},
                                                      {SensorIdentifier::Socket, "socket"}}};

inline constexpr std::string_view unitName = "unit";
inline constexpr std::string_view sensorName = "sensor";
inline constexpr std::string_view socketGroupName = "group";
inline constexpr std::string_view rcmName = "rcm";

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Keys of the values that a recording gives or that are computed from it.
#pragma once

namespace qel::tools::key {

constexpr unsigned short voltage = 1;
constexpr unsigned short current = 4;
constexpr unsigned short powerFactor = 17;
constexpr unsigned short apparentPower = 18;
constexpr unsigned short activePower = 19;
constexpr unsigned short reactivePower = 22;
constexpr unsigned short frequency = 23;
constexpr unsigned short apparentEnergy = 32;
constexpr unsigned short activeEnergy = 36;
constexpr unsigned short deltaVoltage12 = 80;
constexpr unsigned short deltaVoltage23 = 81;
constexpr unsigned short deltaVoltage31 = 82;
constexpr unsigned short temperature = 256;
constexpr unsigned short humidity = 257;
constexpr unsigned short dewPoint = 266;

} // namespace qel::tools::key

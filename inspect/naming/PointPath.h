// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Points as paths that people read and type, and as labels.
///
/// A path is made from the sensor id alone, so it does not change with the slots, and can be converted back:
///
/// | point                  | path                              | bytes of the id: device, kind, four levels      |
/// |------------------------|-----------------------------------|-------------------------------------------------|
/// | electrical             | `unit1`                           | 1, 0, -, -, -, -                                |
/// |                        | `unit1/inlet1/phase2`             | 1, 0, 1, 2, -, -                                |
/// |                        | `unit1/inlet1/circuit3/socket5`   | 1, 0, 1, -, 3, 5: unused levels are left out    |
/// | I2C sensor             | `unit1/sensor1.2`                 | 1, 1, 1, 2, -, -                                |
/// | group without an inlet | `group1`                          | 1, 2, -, -, -, 1                                |
/// |                        | `group2.1`                        | 2, 2, -, -, -, 1: of another device than 1      |
/// | residual-current       | `unit1/rcm1`                      | 1, 4, 1, -, -, -                                |
/// | monitor, group         | `unit1/inlet1/rcm2`               | 1, 4, 1, 2, -, -                                |
/// |                        | `unit1/inlet1/circuit-rcm2`       | 1, 4, 1, -, 2, -: number not in the next level  |
/// | any other              | `0x0103010000000000`              | the id itself                                   |
///
/// Numbers are 0 to 127.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qel::inspect {

/// The path of a point; different points have different paths. The key in the id is ignored. Reentrant.
std::string pointPath(long long svid);

/// Reads a path, in upper or lower case. Reentrant.
/// @return the point's id with key 0, also if the path is a hexadecimal id with a key; none if it is not a path
std::optional<long long> parsePath(std::string_view path);

/// The kind of a point in a word: "unit", "inlet", "phase", "circuit", "socket", "sensor", "group", "rcm"; "point" for
/// any other. Reentrant.
std::string_view kindName(long long svid);

/// Kind and numbers of a point: "unit 1", "inlet 1", "circuit 1/2", "socket 1/2/5", "phase 2/3", "sensor 1/1",
/// "group 1". Levels not in use are left out. The key in the id is ignored. Reentrant.
std::string pointLabel(long long svid);

} // namespace qel::inspect

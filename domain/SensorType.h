// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Kind of a measurement point: the second byte of its sensor id.
#pragma once

#include <iosfwd>

/// Kinds of measurement points.
namespace SensorType {

/// The kind. Any other signed byte can stand in a sensor id and is a legal value of this type.
enum SensorType : signed char {
    Any = -2,        ///< wildcard of queries, never in a sensor id
    Undefined = -1,  ///< level not used
    Electrical = 0,  ///< the unit, an inlet, phase, circuit or socket
    I2C = 1,         ///< a sensor on the I2C bus
    SocketGroup = 2, ///< a user-defined group of sockets
    Reserved = 3,    ///< not used by this unit
    RCM = 4,         ///< residual-current monitor (IEC 62020)
};

/// Writes the enumerator's name, or "SensorType(n)" with n in decimal for a number without a name. Ignores the stream's
/// base and does not change it.
///
/// Threads: reentrant.
/// @param out  the stream
/// @param type any number
/// @return the stream
std::ostream& operator<<(std::ostream& out, SensorType type);

} // namespace SensorType

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Sensor id of an electrical point.
#pragma once

#include "domain/SensorIdentifier.h"

/// Identifier of the unit, an inlet, a phase, a circuit or a socket: kind byte 0, device byte unused (-1) until set.
/// Threads: not shared without care.
class ElectricalSensorIdentifier : public SensorIdentifier {
public:
    /// Each level is an index, or -1 when the point does not use it.
    ElectricalSensorIdentifier(signed char inlet, signed char phase, signed char circuit, signed char socket);

    /// Sets the level with the given parts index: 2 inlet, 3 phase, 4 circuit, 5 socket.
    /// Throws std::out_of_range for any other index.
    void set(unsigned int index, signed char value);

    /// Sets the first component of the id.
    virtual void setDevice(signed char device);
};

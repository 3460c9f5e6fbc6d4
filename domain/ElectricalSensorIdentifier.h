// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Sensor id of an electrical point.
#pragma once

#include "domain/SensorIdentifier.h"

/// Identifier of the unit, an inlet, a phase, a circuit or a socket. Its kind byte is 0 (SensorType::Electrical).
///
/// Threads: reentrant.
class ElectricalSensorIdentifier : public SensorIdentifier {
public:
    /// Sets the four levels below the device; the device stays -1 (unused) until setDevice(). Each level is an index,
    /// or -1 when the point does not use it.
    /// @param inlet   byte 2 of the id
    /// @param phase   byte 3 of the id
    /// @param circuit byte 4 of the id
    /// @param socket  byte 5 of the id
    ElectricalSensorIdentifier(signed char inlet, signed char phase, signed char circuit, signed char socket);

    /// Sets one level.
    /// @param index 2 for the inlet, 3 phase, 4 circuit, 5 socket (SensorIdentifier::Part)
    /// @param value the level's index, -1 for unused
    /// @throws std::out_of_range for any other index
    void set(unsigned int index, signed char value);

    /// Sets the highest byte of the id.
    /// @param device number of the device, -1 for unused
    virtual void setDevice(signed char device);
};

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "domain/SensorIdentifier.h"

class ElectricalSensorIdentifier : public SensorIdentifier {
public:
    ElectricalSensorIdentifier(signed char inlet, signed char phase, signed char circuit, signed char socket);
    void set(unsigned level, signed char value);
    void setDevice(signed char device) { set(Device, device); }
    long long getSensorVariableID(unsigned short key) const { return static_cast<long long>(svid_ | key); }
};

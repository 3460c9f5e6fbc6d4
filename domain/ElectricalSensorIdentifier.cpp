// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "domain/ElectricalSensorIdentifier.h"

#include <stdexcept>
#include <string>

ElectricalSensorIdentifier::ElectricalSensorIdentifier(signed char inlet, signed char phase,
                                                       signed char circuit, signed char socket)
    : SensorIdentifier(SensorType::Electrical) {
    setPart(Inlet, inlet);
    setPart(Phase, phase);
    setPart(Circuit, circuit);
    setPart(Socket, socket);
}

void ElectricalSensorIdentifier::set(unsigned int index, signed char value) {
    if (index < Inlet || index > Socket) {
        throw std::out_of_range("ElectricalSensorIdentifier::set: the level index is " +
                                std::to_string(index) + ", expected 2 (inlet) to 5 (socket)");
    }
    setPart(static_cast<Part>(index), value);
}

void ElectricalSensorIdentifier::setDevice(signed char device) {
    setPart(Device, device);
}

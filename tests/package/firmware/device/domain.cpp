// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The domain library of a device: other classes, members and texts than those of the stand-in.

#include "domain/ElectricalSensorIdentifier.h"
#include "domain/Logger.h"
#include "domain/MeasureValue.h"

#include <log4cpp/Category.hh>

#include <ostream>

std::ostream& SensorType::operator<<(std::ostream& out, SensorType type) {
    return out << "kind " + std::to_string(static_cast<int>(type));
}

std::string SensorIdentifier::explain(long long svid) {
    return "number " + std::to_string(svid) + " of the device";
}

ElectricalSensorIdentifier::ElectricalSensorIdentifier(signed char inlet, signed char phase,
                                                       signed char circuit, signed char socket) {
    set(Inlet, inlet);
    set(Phase, phase);
    set(Circuit, circuit);
    set(Socket, socket);
}

void ElectricalSensorIdentifier::set(unsigned level, signed char value) {
    auto const shift = 56U - 8U * level;
    svid_ = (svid_ & ~(std::uint64_t{0xFF} << shift)) |
            (std::uint64_t{static_cast<unsigned char>(value)} << shift);
}

std::string measval::mvtToStr(MeasureValueType type) {
    return "device type " + std::to_string(static_cast<int>(type));
}

Logger& Logger::getInstance() {
    static Logger instance;
    return instance;
}

log4cpp::Category& Logger::getCategory(std::string const& name) {
    return log4cpp::Category::getInstance(prefix + name);
}

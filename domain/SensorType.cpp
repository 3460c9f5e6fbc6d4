// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "domain/SensorType.h"

#include <ostream>
#include <string>

namespace SensorType {

std::ostream& operator<<(std::ostream& out, SensorType type) {
    switch (type) {
    case Any:
        return out << "Any";
    case Undefined:
        return out << "Undefined";
    case Electrical:
        return out << "Electrical";
    case I2C:
        return out << "I2C";
    case SocketGroup:
        return out << "SocketGroup";
    case Reserved:
        return out << "Reserved";
    case RCM:
        return out << "RCM";
    }
    return out << "SensorType(" + std::to_string(static_cast<int>(type)) + ")";
}

} // namespace SensorType

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The tables of the points' type codes. Which one counts is said by the point's sensor id.
#pragma once

#include "domain/SensorIdentifier.h"
#include "domain/SensorType.h"
#include "region/TableLookup.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace shm {

using TypeRow = TextRow<int>;

inline constexpr std::array<TypeRow, 13> outletTypes{{
    {0, "None"},
    {10, "C13"},
    {20, "C19"},
    {30, "Schuko"},
    {40, "UTE"},
    {50, "UK"},
    {60, "5-15R"},
    {70, "L6-20"},
    {100, "Phase-16A"},
    {101, "Phase-32A"},
    {102, "Phase-63A"},
    {110, "CEE17-16A-3P-230V"},
    {111, "CEE17-32A-3P-230V"},
}};
static_assert(isSortedByCode(outletTypes));

// Rated current and trip characteristic.
inline constexpr std::array<TypeRow, 15> fuseTypes{{
    {0, "None"},
    {1, "10A;B"},
    {2, "10A;C"},
    {10, "13A;B"},
    {11, "13A;C"},
    {20, "16A;B"},
    {21, "16A;C"},
    {30, "20A;B"},
    {31, "20A;C"},
    {40, "25A;B"},
    {41, "25A;C"},
    {50, "32A;B"},
    {51, "32A;C"},
    {60, "63A;B"},
    {61, "63A;C"},
}};
static_assert(isSortedByCode(fuseTypes));

inline constexpr std::array<TypeRow, 6> phaseTypes{{
    {0, "None"},
    {1, "Phase"},
    {2, "Measurement Group"},
    {3, "CEE17-16A-5P-400V"},
    {4, "CEE17-32A-5P-400V"},
    {5, "CEE17-63A-5P-400V"},
}};
static_assert(isSortedByCode(phaseTypes));

inline constexpr std::array<TypeRow, 5> unitTypes{{
    {0, "Unknown Type"},
    {1, "PowerUnit"},
    {2, "Master"},
    {3, "Slave"},
    {4, "SlavePowerUnit"},
}};
static_assert(isSortedByCode(unitTypes));

inline constexpr std::array<TypeRow, 9> inletTypes{{
    {0, "None"},
    {1, "1P"},
    {3, "3PDELTA"},
    {4, "4PWYE"},
    {11, "US_1P"},
    {12, "US_2P"},
    {13, "US_3PDELTA"},
    {14, "US_4PWYE"},
    {15, "US_4PDELTA"},
}};
static_assert(isSortedByCode(inletTypes));

inline constexpr std::array<TypeRow, 7> i2cTypes{{
    {-3, "I2C EEPROM"},
    {-2, "I2C Multiplexer"},
    {-1, "Undefined I2C Sensor Type"},
    {1, "I2C Temperature Sensor"},
    {2, "I2C Temperature-Humidity Sensor"},
    {3, "I2C GPIO"},
    {4, "I2C Door Sensor"},
}};
static_assert(isSortedByCode(i2cTypes));

inline constexpr std::array<TypeRow, 2> groupTypes{{{0, "Unset SG"}, {1, "SG"}}};
static_assert(isSortedByCode(groupTypes));

inline constexpr std::array<TypeRow, 2> rcmTypes{{{0, "Unset RCM"}, {1, "RCM"}}};
static_assert(isSortedByCode(rcmTypes));

/// Text of an electrical point's type: the lowest level that the id names decides on the table.
///
/// Threads: reentrant.
inline std::string_view electricalTypeName(SensorIdentifier::Parts const& parts, std::uint8_t type) {
    auto const names = [&](SensorIdentifier::Part level) {
        return parts[level] != -1;
    };
    if (names(SensorIdentifier::Socket)) {
        return textOf(outletTypes, type, "UNKNOWN OUTLET TYPE");
    }
    if (names(SensorIdentifier::Circuit)) {
        return textOf(fuseTypes, type, "UNKNOWN FUSE TYPE");
    }
    if (names(SensorIdentifier::Phase)) {
        return textOf(phaseTypes, type, "UNKNOWN PU PHASE TYPE");
    }
    auto const signedType = static_cast<std::int8_t>(type);
    return names(SensorIdentifier::Inlet) ? textOf(inletTypes, signedType, "UNKNOWN INLET TYPE")
                                          : textOf(unitTypes, signedType, "UNKNOWN PDU TYPE");
}

/// Text of a point's type code: "Schuko", "16A;C", "1P"; the "UNKNOWN ..." text of the table for a code that it does
/// not list, "" for a kind without a table.
/// @param svid of the point; its key is not looked at
///
/// Threads: reentrant.
inline std::string_view typeName(long long svid, std::uint8_t type) {
    auto const parts = SensorIdentifier::getSensorIdParts(svid);
    auto const signedType = static_cast<std::int8_t>(type);
    switch (parts[SensorIdentifier::Kind]) {
    case SensorType::Electrical:
        return electricalTypeName(parts, type);
    case SensorType::I2C:
        return textOf(i2cTypes, signedType, "Invalid I2C Sensor Type");
    case SensorType::SocketGroup:
        return textOf(groupTypes, signedType, "UNKNOWN SG TYPE");
    case SensorType::RCM:
        return textOf(rcmTypes, signedType, "UNKNOWN RCM TYPE");
    default:
        return {};
    }
}

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The table of the value keys: their names, what their values look like, and how they are stored.
#pragma once

#include "format/Units.h"
#include "format/ValueKeys.h"
#include "region/QelShmRecords.h"
#include "region/TableLookup.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace shm {

/// What the writer does with the values of a key.
enum class KeyKind : std::uint8_t {
    Number,     ///< stores the number as delivered
    Energy,     ///< stores the number divided by shm::energyFactor
    PointState, ///< puts time and state into the point's slot and drops the number
};

/// What is known of a key.
struct KeyRow {
    unsigned short code = NO_KEY;
    std::string_view name; ///< "" for a key without a name
    KeyKind kind = KeyKind::Number;
    int decimals = 1;                                ///< digits after the point, when shown
    std::optional<std::uint8_t> unit = std::nullopt; ///< unit code, see Units.h
    std::optional<unsigned> scalepos = std::nullopt; ///< digits after the point of the fixed-point form
};

namespace detail {

namespace unit = tav::unit;

inline constexpr auto none = std::nullopt;
inline constexpr auto number = KeyKind::Number;
inline constexpr auto energy = KeyKind::Energy;
inline constexpr auto pointState = KeyKind::PointState;

// Deliberate: decimals and scale position differ for several keys; text and fixed-point numbers have other readers.
inline constexpr std::array<KeyRow, 84> keyRows{{
    {key::guid, "GUID"},
    {key::voltage, "Voltage", number, 1, unit::volt, 2},
    {key::peakVoltage, "Peak Voltage", number, 1, unit::volt, 2},
    {key::current, "Current", number, 2, unit::ampere, 2},
    {key::peakCurrent, "Peak Current", number, 2, unit::ampere, 2},
    {key::differentialCurrentAc, "Differential Current AC", number, 1, unit::milliampere, 1},
    {key::differentialCurrentDc, "Differential Current DC", number, 1, unit::milliampere, 1},
    {key::neutralCurrent, "Neutral Current", number, 2, unit::ampere, 2},
    {key::phaseAngle, "Phase Angle", number, 0, unit::degree, none},
    {key::powerFactor, "Power Factor", number, 3, none, 3},
    {key::apparentPower, "Apparent Power", number, 1, unit::voltAmpere, 1},
    {key::activePower, "Active Power", number, 1, unit::watt, 1},
    {key::peakActivePower, "Peak Active Power", number, 1, unit::watt, 1},
    {key::reactivePower, "Reactive Power", number, 1, unit::var, 1},
    {key::frequency, "Frequency", number, 2, unit::hertz, 1},
    {key::peakNeutralCurrent, "Peak Neutral Current", number, 2, unit::ampere, 2},
    {key::apparentEnergy, "Apparent Energy", energy, 1, unit::kilovoltAmpereHour, 1},
    {key::apparentEnergyDelta, "Apparent Energy Delta", energy, 1, unit::kilovoltAmpereHour, 1},
    {key::reactiveEnergy, "Reactive Energy", energy, 1, unit::kilovarHour, 1},
    {key::reactiveEnergyDelta, "Reactive Energy Delta", energy, 1, unit::kilovarHour, 1},
    {key::activeEnergy, "Active Energy", energy, 1, unit::kilowattHour, 1},
    {key::activeEnergyDelta, "Active Energy Delta", energy, 1, unit::kilowattHour, 1},
    {key::activeEnergyResettable, "Active Energy Resettable", energy, 1, unit::kilowattHour, 1},
    {key::fuseState, "Fuse State", pointState},
    {key::orientation, "Orientation"},
    {key::usb, "USB"},
    {key::socket, "Socket", pointState},
    {key::pduState, "PDU State", pointState},
    {key::sensorState, "Sensor State", pointState},
    {key::circuitState, "Circuit State", pointState},
    {key::phaseState, "Phase State", pointState},
    {key::rcdState, "RCD State", pointState},
    {key::socketGroupState, "Socket Group State", pointState},
    {key::globalState, "Global State", pointState},
    {key::state, "State", pointState, 1, none, 0},
    {key::sensorType, "Sensor Type"},
    {key::circuitType, "Circuit Type"},
    {key::fuseType, "Fuse Type"},
    {key::socketType, "Socket Type"},
    {key::socketColor, "Socket Color"},
    {key::phaseType, "Phase Type"},
    {key::pduType, "PDU Type"},
    {key::rcmType, "RCM Type"},
    {key::type, "Type", number, 1, none, 0},
    {key::deltaVoltage12, "Delta Voltage 12", number, 1, unit::volt, 2},
    {key::deltaVoltage23, "Delta Voltage 23", number, 1, unit::volt, 2},
    {key::deltaVoltage31, "Delta Voltage 31", number, 1, unit::volt, 2},
    {key::temperature, "Temperature", number, 1, unit::celsius, 1},
    {key::humidity, "Humidity", number, 1, unit::percent, 1},
    {key::input1, "Input 1"},
    {key::input2, "Input 2"},
    {key::input3, "Input 3"},
    {key::input4, "Input 4"},
    {key::output1, "Output 1"},
    {key::output2, "Output 2"},
    {key::output3, "Output 3"},
    {key::output4, "Output 4"},
    {key::dewPoint, "Dew Point", number, 1, unit::celsius, 1},
    {key::deviceLocation, "Device location"},
    {key::deviceContact, "Device contact"},
    {key::deviceSerialNumber, "Device serial number"},
    {key::deviceItemNumber, "Device item number"},
    {key::deviceSoftwareVersion, "Device software version"},
    {key::deviceHardwareVersion, "Device hardware version"},
    {key::deviceFirmwareVersion, "Device firmware version"},
    {key::deviceOperatingSystemVersion, "Device operating system version"},
    {key::deviceArchitecture, "Device architecture"},
    {key::deviceModbusAddress, "Device modbus address"},
    {key::deviceBuildNumber, "Device build number"},
    {key::deviceProductionDate, "Device production date"},
    {key::deviceBootloaderVersion, "Device bootloader version"},
    {key::deviceActivePartition, "Device active partition"},
    {key::deviceSerialNumberBaseUnit, "Device serial number (base unit)"},
    {key::deviceItemNumberBaseUnit, "Device item number (base unit)"},
    {key::deviceHardwareVersionBaseUnit, "Device hardware version (base unit)"},
    {key::deviceProductionDateBaseUnit, "Device production date (base unit)"},
    {key::slaveFactoryResetSignaling, "Slave factory reset signaling"},
    {key::voltageAbove20V, "Dummy key to see if voltage > 20V"},
    {key::apparentEnergyDeltaBaseValue, "Apparent energy delta base value", energy},
    {key::reactiveEnergyDeltaBaseValue, "Reactive energy delta base value", energy},
    {key::activeEnergyDeltaBaseValue, "Active energy delta base value", energy},
    {key::activeEnergyResettableDeltaBaseValue, "Active energy resettable delta base value", energy},
    {key::voltageMeasuredAtPhaseLevel, "Voltage measured at phase level"},
    {key::voltageMeasuredAtSocketLevel, "Voltage measured at socket level"},
}};
static_assert(isSortedByCode(keyRows));

inline constexpr KeyRow unnamedKey;

} // namespace detail

/// All keys with a name, in ascending order.
inline constexpr auto const& keyTable = detail::keyRows;

/// What is known of a key; for a key without a name a row that has none, with one decimal and neither unit nor scale.
///
/// Threads: reentrant.
constexpr KeyRow const& keyRow(unsigned short key) {
    auto const* const row = findRow(keyTable, key);
    return row != nullptr ? *row : detail::unnamedKey;
}

/// The unit behind a value of this key as people read it ("V", "°C", "%"), "" for a key without one.
///
/// Threads: reentrant.
constexpr std::string_view keyUnit(unsigned short key) {
    auto const code = keyRow(key).unit;
    return code ? tav::unitSymbol(*code) : std::string_view();
}

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/KeyFormat.h"

#include "format/Names.h"
#include "region/LogLine.h"
#include "region/TableLookup.h"

#include <log4cpp/Category.hh>
#include <log4cpp/Priority.hh>

#include <array>

namespace tav {

namespace {

constexpr auto none = std::nullopt;

constexpr std::uint8_t ampere = 4;
constexpr std::uint8_t hertz = 32;
constexpr std::uint8_t watt = 36;
constexpr std::uint8_t volt = 38;
constexpr std::uint8_t celsius = 45;
constexpr std::uint8_t degree = 65;
constexpr std::uint8_t kilowattHour = 240;
constexpr std::uint8_t percent = 241;
constexpr std::uint8_t voltAmpere = 242;
constexpr std::uint8_t var = 243;
constexpr std::uint8_t kilovoltAmpereHour = 244;
constexpr std::uint8_t kilovarHour = 245;
constexpr std::uint8_t milliampere = 246;

// Deliberate: decimals and scale position differ for several keys; text and fixed-point numbers have other
// readers.
constexpr std::array<KeyFormat, 31> keyFormats{{
    {0x00, 1, none, none},            // GUID
    {0x01, 1, volt, 2},               // Voltage
    {0x02, 1, volt, 2},               // Peak Voltage
    {0x04, 2, ampere, 2},             // Current
    {0x05, 2, ampere, 2},             // Peak Current
    {0x07, 1, milliampere, 1},        // Differential Current AC
    {0x08, 1, milliampere, 1},        // Differential Current DC
    {0x09, 2, ampere, 2},             // Neutral Current
    {0x10, 0, degree, none},          // Phase Angle
    {0x11, 3, none, 3},               // Power Factor
    {0x12, 1, voltAmpere, 1},         // Apparent Power
    {0x13, 1, watt, 1},               // Active Power
    {0x14, 1, watt, 1},               // Peak Active Power
    {0x16, 1, var, 1},                // Reactive Power
    {0x17, 2, hertz, 1},              // Frequency
    {0x18, 2, ampere, 2},             // Peak Neutral Current
    {0x20, 1, kilovoltAmpereHour, 1}, // Apparent Energy
    {0x21, 1, kilovoltAmpereHour, 1}, // Apparent Energy Delta
    {0x22, 1, kilovarHour, 1},        // Reactive Energy
    {0x23, 1, kilovarHour, 1},        // Reactive Energy Delta
    {0x24, 1, kilowattHour, 1},       // Active Energy
    {0x25, 1, kilowattHour, 1},       // Active Energy Delta
    {0x26, 1, kilowattHour, 1},       // Active Energy Resettable
    {0x3B, 1, none, 0},               // State
    {0x48, 1, none, 0},               // Type
    {0x50, 1, volt, 2},               // Delta Voltage 12
    {0x51, 1, volt, 2},               // Delta Voltage 23
    {0x52, 1, volt, 2},               // Delta Voltage 31
    {0x100, 1, celsius, 1},           // Temperature
    {0x101, 1, percent, 1},           // Humidity
    {0x10A, 1, celsius, 1},           // Dew Point
}};
static_assert(shm::isSortedByCode(keyFormats));

constexpr std::array<double, 6> powers{1, 10, 100, 1000, 10000, 100000};
constexpr std::array<double, 6> inversePowers{1, 0.1, 0.01, 0.001, 0.0001, 0.00001};

} // namespace

KeyFormat keyFormat(unsigned short key) {
    auto const* const row = shm::findRow(keyFormats, key);
    return row != nullptr ? *row : KeyFormat{key, 1, none, none};
}

unsigned int scalepos(unsigned short key) {
    auto const position = keyFormat(key).scalepos;
    // Asked before, so that the name is not looked up in vain.
    if (!position && shm::formatLog.isPriorityEnabled(log4cpp::Priority::WARN)) {
        shm::LogLine(shm::formatLog, log4cpp::Priority::WARN, "scalepos")
            << "scaling for " << shm::keyName(key) << " has not been defined";
    }
    return position.value_or(0);
}

double scaleFactor(unsigned int position) {
    return powers.at(position);
}

double inverseScaleFactor(unsigned int position) {
    return inversePowers.at(position);
}

} // namespace tav

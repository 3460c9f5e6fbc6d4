// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Turns measured values into text, and into the fixed-point integers of some interfaces.
#pragma once

#include "domain/eStatus_Bits.h"
#include "region/QelExport.h"

#include <string>

namespace dbdata {
class GPIOSensorData;
}
namespace shm {
class QelShmMVal;
}

/// Text of measured values.
namespace tav {

/// Formats by value key. A key has a number of decimals; most keys also have a unit, and a power of ten for fixed-point
/// numbers. An unknown key has one decimal, no unit and no power of ten. A missing value (free slot, or state -1) is
/// shown as "--", an expected one (state -2) as "n/a". Numbers are written as printf does in the locale "C".
///
/// Threads: reentrant. There is no state.
class QEL_EXPORT ValueFormatter {
public:
    ValueFormatter() = delete;

    /// Gives a key's printf format for one double.
    /// @param key       value key
    /// @param separator between number and unit; omitted when the key has no unit
    /// @return for example "%.1f V", "%.1f %%" or "%.3f"
    static std::string format(unsigned short key, std::string const& separator);

    /// Formats a number.
    /// @param key       value key
    /// @param value     in the key's unit
    /// @param separator between number and unit; omitted when the key has no unit
    /// @return for example "230.1 V"; cut after 31 bytes
    static std::string str(unsigned short key, double value, std::string const& separator);

    /// Formats a slot's value, with a blank between number and unit.
    /// @param mv the value; a null handle is a missing value
    /// @return for example "230.1 V", "--" or "n/a"
    static std::string str(shm::QelShmMVal const& mv);

    /// Formats the value of a GPIO input or output by its mode. Mode 2 shows the name of the state, and so does mode 0
    /// unless noContactState. Mode 6 shows the counted energy.
    /// @note Logs at ERROR in "qel.shm.access.reader" a std::exception of the configuration.
    /// @param mv             the value
    /// @param gpio           configuration of the sensor
    /// @param noContactState whether mode 0 shows "--" instead of the state
    /// @return a state's name, "12.3 kWh", or "--" in any other mode and for a key that the configuration does not know
    static std::string str(shm::QelShmMVal const& mv, dbdata::GPIOSensorData const& gpio,
                           bool noContactState);

    /// Formats a number for the display of the device, with "|" between number and unit. Temperature and humidity start
    /// with "|", and '^' replaces the first byte of their degree sign. A power factor ends with "|".
    /// @param key   value key
    /// @param value in the key's unit
    /// @param state shown instead of the number for inputs and outputs (keys 0x102 to 0x109)
    /// @return for example "230.1|V"; "S0", "On", "Off", "Hi", "Lo", "--" or "?" for inputs and outputs
    static std::string strForDisplay(unsigned short key, double value, eStatus_Bits state);

    /// Converts to a fixed-point integer: multiplies by the key's power of ten, adds a half and truncates towards
    /// zero. A key without a power of ten does not scale.
    /// @note Logs at WARN in "qel.shm.access.format" that a key has no power of ten.
    /// @param key   value key
    /// @param value in the key's unit
    /// @return the integer; the nearest long long when it does not fit, 0 for NaN
    static long long scale(unsigned short key, double value);

    /// Converts from a fixed-point integer: divides by the key's power of ten. A key without one does not scale.
    /// @note Logs at WARN in "qel.shm.access.format" that a key has no power of ten.
    /// @param key   value key
    /// @param value the integer
    /// @return the value in the key's unit
    static double scale(unsigned short key, long long value);
};

} // namespace tav

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Turns measured values into text, and into the fixed-point integers some interfaces carry.
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

namespace tav {

/// Formats by value key: each key has a number of decimals, most a unit and a power of ten for fixed-point
/// numbers. A key without an entry of its own has one decimal, no unit and no scale. A value that is missing
/// (free slot, state -1) shows as "--", one that is still expected (state -2) as "n/a".
/// Numbers are written as printf does in the locale "C", whatever the process's locale.
///
/// Threads: all operations may be called from any thread. Nothing is kept.
class QEL_EXPORT ValueFormatter {
public:
    ValueFormatter() = delete;

    /// The key's printf format for one double: "%.1f V", "%.1f %%", "%.3f".
    /// @param separator put between number and unit; left out when the key has no unit
    static std::string format(unsigned short key, std::string const& separator);

    /// The value in the key's format: "230.1 V". At most 31 bytes long, cut there if need be.
    static std::string str(unsigned short key, double value, std::string const& separator);

    /// The value of a slot with a blank between number and unit. A null handle shows as a missing value.
    static std::string str(shm::QelShmMVal const& mv);

    /// The value of a GPIO input or output, by the mode that its configuration names: the name of the state
    /// in mode 2, and in mode 0 if the flag is false; the energy counted so far ("12.3 kWh") in mode 6; "--"
    /// in all others and when the configuration does not know the key.
    /// @param noContactState whether mode 0 shows "--" instead of the state
    /// Logs (category "qel.shm.access.reader", ERROR) what the configuration threw, if derived from
    /// std::exception.
    static std::string str(shm::QelShmMVal const& mv, dbdata::GPIOSensorData const& gpio,
                           bool noContactState);

    /// The text for the unit's display, number and unit separated by "|": "230.1|V". Inputs and outputs (keys
    /// 0x102 to 0x109) show by their state alone: "S0", "On", "Off", "Hi", "Lo", "--", or "?". Temperature
    /// and humidity start with "|" and mark the degree sign with '^' in place of its first byte; a power
    /// factor ends with "|".
    static std::string strForDisplay(unsigned short key, double value, eStatus_Bits state);

    /// The value as a fixed-point integer: multiplied by the key's power of ten, half added, cut off towards
    /// zero. What does not fit becomes the nearest long long, NaN becomes 0. Logs (category
    /// "qel.shm.access.format", WARN) that a key has no scale; the value is not scaled then.
    static long long scale(unsigned short key, double value);

    /// The value of a fixed-point integer: divided by the key's power of ten. Logs like the operation above.
    static double scale(unsigned short key, long long value);
};

} // namespace tav

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Configuration of the inputs of an I2C GPIO sensor.
#pragma once

#include <unordered_map>

namespace dbdata {

/// Mode and pulse constant per input, by value key. Threads: not shared without care.
class GPIOSensorConfig {
public:
    /// What an input is used for. Further modes exist on the device; the data plane tells these apart.
    enum Mode : int { Contact = 0, State = 2, PulseCounter = 6 };

    /// @param key   value key of the input (0x102 to 0x109)
    /// @param pulseConstant pulses per kWh, used in mode 6
    void set(long long key, int mode, long long pulseConstant);

    /// Throws std::out_of_range for a key that was never set.
    int mode(long long key) const;

    /// Pulses per kWh. Throws std::out_of_range for a key that was never set.
    long long pc(long long key) const;

private:
    struct Input {
        int mode;
        long long pulseConstant;
    };

    Input const& input(long long key) const;

    std::unordered_map<long long, Input> inputs_;
};

/// What the device knows of one GPIO sensor; here its configuration.
class GPIOSensorData {
public:
    explicit GPIOSensorData(GPIOSensorConfig config);

    GPIOSensorConfig const& config() const { return config_; }

private:
    GPIOSensorConfig config_;
};

} // namespace dbdata

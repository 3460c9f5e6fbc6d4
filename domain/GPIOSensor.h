// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Configuration of the inputs of an I2C GPIO sensor.
#pragma once

#include <unordered_map>

/// What the device's database knows of its sensors.
namespace dbdata {

/// Mode and pulse constant of each input, by value key.
///
/// Threads: reentrant.
class GPIOSensorConfig {
public:
    /// What an input is used for. The device has further modes; the data plane distinguishes these.
    enum Mode : int {
        Contact = 0,      ///< a contact: open or closed
        State = 2,        ///< a state with a name of its own
        PulseCounter = 6, ///< pulses of an energy meter
    };

    /// Stores the configuration of one input.
    /// @param key           value key of the input, 0x102 to 0x109
    /// @param mode          a Mode, or a further mode of the device
    /// @param pulseConstant pulses per kWh; used in mode 6 only
    void set(long long key, int mode, long long pulseConstant);

    /// @param key value key of the input
    /// @return the input's mode
    /// @throws std::out_of_range when the key was never set
    int mode(long long key) const;

    /// @param key value key of the input
    /// @return pulses per kWh
    /// @throws std::out_of_range when the key was never set
    long long pc(long long key) const;

private:
    struct Input {
        int mode;
        long long pulseConstant;
    };

    Input const& input(long long key) const;

    std::unordered_map<long long, Input> inputs_;
};

/// What the device knows of one GPIO sensor: here only its configuration.
///
/// Threads: reentrant.
class GPIOSensorData {
public:
    /// @param config copied or moved into the object
    explicit GPIOSensorData(GPIOSensorConfig config);

    /// @return the configuration, valid as long as this object
    GPIOSensorConfig const& config() const { return config_; }

private:
    GPIOSensorConfig config_;
};

} // namespace dbdata

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <stdexcept>
#include <utility>

namespace dbdata {

class GPIOSensorConfig {
public:
    enum Mode { Contact = 0, State = 2, PulseCounter = 6 };

    void set(long long key, int mode, long long pulses) { inputs_[key] = {mode, pulses}; }
    int mode(long long key) const { return input(key).first; }
    long long pc(long long key) const { return input(key).second; }

private:
    std::pair<int, long long> const& input(long long key) const {
        auto const found = inputs_.find(key);
        if (found == inputs_.end()) {
            throw std::out_of_range("the device has no such input");
        }
        return found->second;
    }

    std::map<long long, std::pair<int, long long>> inputs_;
};

class GPIOSensorData {
public:
    explicit GPIOSensorData(GPIOSensorConfig config) : config_(std::move(config)) {}
    virtual ~GPIOSensorData() = default;
    GPIOSensorConfig config() const { return config_; }

private:
    GPIOSensorConfig config_;
};

} // namespace dbdata

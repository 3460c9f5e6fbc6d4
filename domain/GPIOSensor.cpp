// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "domain/GPIOSensor.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace dbdata {

void GPIOSensorConfig::set(long long key, int mode, long long pulseConstant) {
    inputs_[key] = Input{mode, pulseConstant};
}

int GPIOSensorConfig::mode(long long key) const {
    return input(key).mode;
}

long long GPIOSensorConfig::pc(long long key) const {
    return input(key).pulseConstant;
}

GPIOSensorConfig::Input const& GPIOSensorConfig::input(long long key) const {
    auto const found = inputs_.find(key);
    if (found == inputs_.end()) {
        throw std::out_of_range("GPIO configuration holds no input with key " + std::to_string(key));
    }
    return found->second;
}

GPIOSensorData::GPIOSensorData(GPIOSensorConfig config) : config_(std::move(config)) {}

} // namespace dbdata

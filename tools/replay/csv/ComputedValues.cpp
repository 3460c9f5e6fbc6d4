// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/ComputedValues.h"

#include <algorithm>
#include <cmath>

namespace qel::tools {

void EnergyCounter::add(std::uint64_t time, double power) {
    constexpr double msPerHour = 3600000.0;
    Reading const reading{time, std::max(power, 0.0)};
    if (last_) {
        auto const hours = static_cast<double>(reading.time - last_->time) / msPerHour;
        total_ += (last_->power + reading.power) / 2.0 * hours;
    }
    last_ = reading;
}

std::optional<double> dewPoint(double temperature, double relativeHumidity) {
    constexpr double slope = 17.62;
    constexpr double zero = 243.12;
    if (relativeHumidity <= 0.0 || temperature <= -zero) {
        return std::nullopt;
    }
    double const exponent = std::log(relativeHumidity / 100.0) + slope * temperature / (zero + temperature);
    if (exponent >= slope) {
        return std::nullopt;
    }
    return zero * exponent / (slope - exponent);
}

} // namespace qel::tools

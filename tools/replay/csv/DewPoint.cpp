// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/DewPoint.h"

#include <cmath>

namespace qel::tools {

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

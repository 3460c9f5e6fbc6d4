// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Dew point of moist air.
#pragma once

#include <optional>

namespace qel::tools {

/// By the Magnus formula over water, with the constants 17.62 and 243.12 degC (good from -45 to 60 degC).
/// @param temperature      degC
/// @param relativeHumidity percent
/// @return degC; nothing without moisture (humidity 0 or less) and for numbers the formula does not reach
std::optional<double> dewPoint(double temperature, double relativeHumidity);

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Values computed from recorded ones: energy and dew point.
#pragma once

#include <cstdint>
#include <optional>

namespace qel::tools {

/// Integrates power over the time between readings by the trapezoid rule: the mean of two neighbouring readings times
/// their distance. Gaps without readings are bridged the same way. Negative power counts as 0, as in a meter that
/// counts only what is drawn, so the counter never falls.
///
/// Threads: reentrant.
class EnergyCounter {
public:
    /// @param time  ms, not before that of the last call
    /// @param power in W or VA
    void add(std::uint64_t time, double power);

    /// In Wh or VAh, from 0 at the first reading.
    double total() const { return total_; }

private:
    struct Reading {
        std::uint64_t time;
        double power;
    };

    std::optional<Reading> last_;
    double total_ = 0.0;
};

/// Dew point of moist air by the Magnus formula over water, with the constants 17.62 and 243.12 degC (valid from -45 to
/// 60 degC).
/// @param temperature      degC
/// @param relativeHumidity percent
/// @return degC; nothing if the humidity is 0 or less, or the formula has no result
std::optional<double> dewPoint(double temperature, double relativeHumidity);

} // namespace qel::tools

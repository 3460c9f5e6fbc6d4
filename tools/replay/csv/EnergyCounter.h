// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Energy out of a run of power readings.
#pragma once

#include <cstdint>
#include <optional>

namespace qel::tools {

/// Integrates power over the real time between readings by the trapezoid rule: the mean of two neighbouring
/// readings times their distance. A gap without readings is bridged the same way. Negative power counts as 0,
/// as in a meter that only counts what is drawn, so the counter never falls.
///
/// Threads: not shared without care.
class EnergyCounter {
public:
    /// @param time  ms, not before the reading before
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

} // namespace qel::tools

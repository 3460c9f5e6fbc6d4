// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the numbers of a value were since the start.
#pragma once

#include <cstdint>

namespace qel::watch {

/// Least and greatest number, mean and rate of deliveries, without the numbers themselves. A mean counts each look alike,
/// so a number that stayed for long weighs more.
///
/// Threads: reentrant.
class ValueStatistics {
public:
    /// @param ticks start, ms of a clock that is never set back
    explicit ValueStatistics(std::uint64_t ticks = 0) : began_(ticks) {}

    /// Adds the number that a look saw. Ignores numbers that are not finite.
    void addNumber(double number);
    /// Counts a delivery.
    void addDelivery() { ++deliveries_; }

    /// Whether there was no number; then minimum, maximum and mean are 0.
    bool isEmpty() const { return numbers_ == 0; }
    double minimum() const { return minimum_; }
    double maximum() const { return maximum_; }
    double mean() const { return mean_; }

    /// Deliveries a second, at most one for each look.
    /// @return 0 at the start
    double rate(std::uint64_t ticks) const;

private:
    std::uint64_t began_;
    std::uint64_t numbers_ = 0;
    std::uint64_t deliveries_ = 0;
    double minimum_ = 0.0;
    double maximum_ = 0.0;
    double mean_ = 0.0;
};

} // namespace qel::watch

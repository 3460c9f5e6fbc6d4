// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Numbers and times beside a plot. All functions are reentrant.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qel::plot {

/// The least of 1, 2 and 5 times a power of ten that is not below a number, but for what a division rounds.
/// @param step greater than 0
double roundStep(double step);

/// The range of an axis, with round numbers at both ends. Reentrant.
struct NumberAxis {
    double low;
    double high; ///< greater than low
    double step;

    std::vector<double> ticks() const;
    std::string text(double tick) const; ///< with as many decimals as the step has
};

/// Encloses numbers. A range without extent gets some.
/// @param most about how many steps there may be, at least 1
NumberAxis numberAxis(double least, double greatest, std::size_t most);

/// A time with its label. Reentrant.
struct TimeTick {
    std::uint64_t time; ///< ms since 1970 UTC
    std::string text;   ///< "09:38:47", "09:38", "06-09" (month and day)
};

/// Round times in a range.
/// @param from  ms since 1970 UTC
/// @param until ms since 1970 UTC
/// @param most  how many there may be, at least 1
std::vector<TimeTick> timeTicks(std::uint64_t from, std::uint64_t until, std::size_t most);

} // namespace qel::plot

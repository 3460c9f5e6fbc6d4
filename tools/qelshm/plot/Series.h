// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A value over time, as a plot needs it.
#pragma once

#include "inspect/naming/StateClass.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qel::plot {

/// A number at a time. Reentrant.
struct PlotPoint {
    std::uint64_t time; ///< ms since 1970 UTC
    double number;
};

/// A time during which a value was in warning or alarm. Reentrant.
struct PlotSpan {
    std::uint64_t from;
    std::uint64_t until;
    bool isAlarm; ///< otherwise a warning
};

/// The curve of one value. However many samples there are, it keeps four of each column of the plot: the first, the
/// least, the greatest and the last one. So the drawn curve is the same as with all of them.
///
/// Threads: reentrant.
class Series {
public:
    /// @param from    start of the plot, ms since 1970 UTC
    /// @param until   end, not before from
    /// @param columns how many columns of dots the plot has, at least 1
    Series(std::uint64_t from, std::uint64_t until, std::size_t columns);

    /// Takes the next sample.
    /// @param time   from start to end, never going back; earlier ones count as the start
    /// @param number none breaks the line
    /// @param state  of the value from now on
    void add(std::uint64_t time, std::optional<double> number, inspect::StateClass state);

    /// Breaks the line: there are no samples for a while.
    /// @param time of the last sample before
    void pause(std::uint64_t time);

    /// Says how long the last sample holds.
    void end(std::uint64_t time);

    /// The pieces of the line, each with at least one point.
    std::vector<std::vector<PlotPoint>> pieces() const;

    /// Warnings and alarms, as exact as the columns.
    std::vector<PlotSpan> spans() const;

    bool isEmpty() const { return count_ == 0; }
    std::size_t count() const { return count_; } ///< samples with a number
    double least() const { return least_; }
    double greatest() const { return greatest_; }
    double last() const { return last_; }

private:
    enum class Mark : std::uint8_t { None, Warning, Alarm };

    struct Column {
        std::size_t count = 0;
        bool isBroken = false; ///< from the point before
        PlotPoint first{};
        PlotPoint least{};
        PlotPoint greatest{};
        PlotPoint last{};
        Mark mark = Mark::None;
    };

    std::size_t columnAt(std::uint64_t time) const;
    std::uint64_t timeAt(std::size_t column) const;
    void markUpTo(std::uint64_t time);

    std::uint64_t from_;
    std::uint64_t until_;
    std::vector<Column> columns_;
    bool isBroken_ = false;
    Mark mark_ = Mark::None; ///< of the last sample
    std::size_t marked_ = 0; ///< its column
    std::size_t count_ = 0;
    double least_ = 0.0;
    double greatest_ = 0.0;
    double last_ = 0.0;
};

} // namespace qel::plot

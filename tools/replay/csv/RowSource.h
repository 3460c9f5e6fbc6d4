// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The rows of one recording on the recording's own clock.
#pragma once

#include "tools/replay/csv/CsvTable.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace qel::tools {

/// One row as it is replayed.
struct Row {
    std::uint64_t time;                       ///< ms since 1970 UTC
    std::vector<std::optional<double>> cells; ///< by column
};

/// Hands out the rows of a table from a first row on, over and over if wished. In each repetition the times
/// go on where the last one ended, one step of the recording later, and so do the recorded energy counters.
///
/// Threads: not shared without care.
class RowSource {
public:
    /// @param table must outlive the source
    /// @param first row to start and to start over at, from 0, below the number of rows
    RowSource(CsvTable const& table, std::size_t first, bool isEndless);

    /// Time of the first row, ms since 1970 UTC.
    std::uint64_t startTime() const { return table_->time(first_); }

    /// When the next row is due, in ms after the first one; nothing after the last.
    std::optional<std::uint64_t> due() const;

    /// Takes the next row; there must be one.
    Row next();

private:
    void startOver();
    std::uint64_t lastStep() const;
    double counted(std::size_t column) const;

    CsvTable const* table_;
    std::size_t first_;
    bool isEndless_;
    std::size_t row_;
    std::uint64_t shift_ = 0;    // ms added to the recorded times
    std::vector<double> raises_; // by column: added to the recorded numbers
};

} // namespace qel::tools

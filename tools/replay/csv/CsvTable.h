// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// One recording, read from a CSV file and checked.
#pragma once

#include "tools/replay/csv/Column.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qel::tools {

/// Rows of readings in the order of their times. The first column of the file is the time in ISO 8601 UTC,
/// every other one a value that the unit knows; an empty cell means that no reading exists.
///
/// Threads: immutable; any thread.
class CsvTable {
public:
    /// Reads a whole file.
    /// @throws InputError naming file, line, column and what was expected: file not readable or empty, no
    /// rows, first
    ///         column not timestamp_utc, unknown or repeated column, row with too few or too many cells, cell
    ///         that is no number, time that is no ISO 8601 UTC or not later than the one before, quotes out
    ///         of place
    static CsvTable read(std::string const& path);

    std::string const& path() const { return path_; }

    /// The columns after the time.
    std::vector<Column> const& columns() const { return columns_; }

    /// Position of a column in columns(), nothing when the file does not have it.
    std::optional<std::size_t> find(PointId const& point, unsigned short key) const;

    std::size_t rowCount() const { return times_.size(); }

    /// ms since 1970 UTC, strictly ascending from row to row. Rows count from 0.
    std::uint64_t time(std::size_t row) const { return times_.at(row); }

    /// The reading of a column, nothing for an empty cell.
    std::optional<double> cell(std::size_t row, std::size_t column) const;

private:
    class Builder;

    explicit CsvTable(std::string path) : path_(std::move(path)) {}

    std::string path_;
    std::vector<Column> columns_;
    std::vector<std::uint64_t> times_;
    std::vector<double> cells_; // row after row; NaN for an empty cell
};

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Recordings, read from CSV files and checked.
#pragma once

#include "tools/replay/csv/Column.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qel::tools {

/// Rows of readings, sorted by time. The first column of the file is the time in ISO 8601 UTC; every other one is a value
/// of the unit. An empty cell means that there is no reading.
///
/// Threads: reentrant.
class Recording {
public:
    /// Reads a whole file.
    /// @throws InputError that names file, line, column and what was expected: the file cannot be read, is empty or has no
    ///         rows; the first column is not timestamp_utc; a column is unknown or repeated; a row has too few or too many
    ///         cells; a cell is not a number; a time is not ISO 8601 UTC or not later than the previous one; quotes are
    ///         misplaced
    static Recording read(std::string const& path);

    std::string const& path() const { return path_; }

    /// The columns after the time.
    std::vector<Column> const& columns() const { return columns_; }

    /// Position of a column in columns(), nothing if the file does not have it.
    std::optional<std::size_t> find(PointId const& point, unsigned short key) const;

    std::size_t rowCount() const { return times_.size(); }

    /// ms since 1970 UTC, strictly ascending from row to row. Rows count from 0.
    std::uint64_t time(std::size_t row) const { return times_.at(row); }

    /// The reading of a column, nothing for an empty cell.
    std::optional<double> cell(std::size_t row, std::size_t column) const;

private:
    class Builder;

    explicit Recording(std::string path) : path_(std::move(path)) {}

    std::string path_;
    std::vector<Column> columns_;
    std::vector<std::uint64_t> times_;
    std::vector<double> cells_; // row after row; NaN for an empty cell
};

/// All recordings of one replay. No column is in two of them.
///
/// Threads: reentrant.
class Recordings {
public:
    /// @throws InputError as Recording::read(), or if two files have the same column
    static Recordings read(std::vector<std::string> const& paths);

    /// In the order of the paths.
    std::vector<Recording> const& all() const { return all_; }

    /// Whether a file has a column for the value.
    bool has(PointId const& point, unsigned short key) const;

    std::size_t rowCount() const;

private:
    void add(Recording recording);

    std::vector<Recording> all_;
};

} // namespace qel::tools

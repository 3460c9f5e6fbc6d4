// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Splits a CSV file into rows of cells.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace qel::tools {

/// Takes the cells of one row and the number of its line, from 1. An exception ends the reading.
using CsvRowHandler = std::function<void(std::vector<std::string> const& cells, std::size_t line)>;

/// The largest row: more than any recording needs, and little memory.
constexpr std::size_t longestCsvRow = 65536; ///< bytes, with its line end
constexpr std::size_t mostCsvCells = 1024;

/// Calls the handler for every row of a file, including empty lines between rows (no cells). Cells are separated by
/// commas and may be in double quotes; lines end with LF or CR LF. Blanks are kept. A byte order mark at the start and
/// empty lines at the end are ignored.
/// @throws InputError if the file cannot be read, quotes are misplaced or a row is too large
void readCsv(std::string const& path, CsvRowHandler const& handler);

} // namespace qel::tools

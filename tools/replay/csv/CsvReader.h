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

/// Calls the handler for every line of a file, including empty ones (no cells). Cells are separated by commas and may be
/// in double quotes; lines end with LF or CR LF. Blanks are kept.
/// @throws InputError if the file cannot be read or quotes are misplaced
void readCsv(std::string const& path, CsvRowHandler const& handler);

} // namespace qel::tools

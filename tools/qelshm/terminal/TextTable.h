// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Lines of text in columns.
#pragma once

#include "tools/common/Output.h"
#include "tools/qelshm/terminal/Style.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qel::tools {

/// A piece of a line. Converts from text, so that rows can be written as lists. Reentrant.
struct Cell {
    // NOLINTNEXTLINE(google-explicit-constructor): a plain text is a cell
    Cell(std::string content, Style of = Style::Plain) : text(std::move(content)), style(of) {}
    // NOLINTNEXTLINE(google-explicit-constructor): a plain text is a cell
    Cell(std::string_view content, Style of = Style::Plain) : text(content), style(of) {}
    // NOLINTNEXTLINE(google-explicit-constructor): a plain text is a cell
    Cell(char const* content, Style of = Style::Plain) : text(content), style(of) {}

    std::string text; ///< a table escapes control characters and invalid UTF-8
    Style style = Style::Plain;
};

/// Rows of several layouts; the columns of each layout are as wide as its longest texts.
///
/// Threads: reentrant.
class TextTable {
public:
    /// Appends a row.
    /// @param layout a small number from 0; rows of one layout share their columns
    void add(std::size_t layout, std::vector<Cell> cells);

    /// Writes the rows with two blanks between columns and none at the end of a line.
    /// @throws OutputError
    void print(std::ostream& out, bool isColoured) const;

private:
    struct Row {
        std::size_t layout;
        std::vector<Cell> cells;
    };

    std::vector<Row> rows_;
    std::vector<std::vector<std::size_t>> widths_; ///< by layout and column, in characters
};

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Lines of text in columns.
#pragma once

#include "tools/qelshm/terminal/Style.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace qel::tools {

/// A piece of a line. Converts from text, so that rows can be written as lists.
struct Cell {
    // NOLINTNEXTLINE(google-explicit-constructor): a plain text is a cell
    Cell(std::string content, Style look = Style::Plain) : text(std::move(content)), style(look) {}
    // NOLINTNEXTLINE(google-explicit-constructor): a plain text is a cell
    Cell(char const* content) : text(content) {}

    std::string text; ///< control characters and broken UTF-8 are escaped when it is printed
    Style style = Style::Plain;
};

/// Rows of several layouts; the columns of each layout are as wide as its longest texts. Threads: not shared.
class TextTable {
public:
    /// @param layout small numbers from 0; rows of one layout share their columns
    void add(std::size_t layout, std::vector<Cell> cells);

    /// Two blanks between columns, none at the end of a line.
    void print(std::ostream& out, bool hasColor) const;

private:
    struct Row {
        std::size_t layout;
        std::vector<Cell> cells;
    };

    std::vector<Row> rows_;
    std::vector<std::vector<std::size_t>> widths_; // by layout and column, in characters
};

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Look-up in constant tables: constexpr arrays of rows, sorted by the rows' member `code`.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace shm {

/// Row of a table that gives each code its text.
template <typename Code>
struct TextRow {
    Code code;
    std::string_view text;
};

/// Whether the rows ascend by code and no code occurs twice; for a static_assert beside the table.
template <typename Row, std::size_t rowCount>
constexpr bool isSortedByCode(std::array<Row, rowCount> const& table) {
    for (std::size_t row = 1; row < rowCount; ++row) {
        if (!(table[row - 1].code < table[row].code)) {
            return false;
        }
    }
    return true;
}

/// Whether the table is sorted and has a row for each code from first to last and no other; for a
/// static_assert.
template <typename Row, std::size_t rowCount>
constexpr bool coversCodes(std::array<Row, rowCount> const& table, long long first, long long last) {
    return isSortedByCode(table) && table.front().code == first && table.back().code == last &&
           static_cast<long long>(rowCount) == last - first + 1;
}

/// Finds a row by its code. The table must be sorted (isSortedByCode()).
///
/// Threads: reentrant.
/// @param table the rows
/// @param code  of the row
/// @return the row, null when there is none
template <typename Row, std::size_t rowCount>
constexpr Row const* findRow(std::array<Row, rowCount> const& table, decltype(Row::code) code) {
    if constexpr (rowCount != 0) {
        // The last row that is not above the code; a step without a branch, for codes come in any order.
        auto const* row = table.data();
        for (auto count = rowCount; count > 1; count -= count / 2) {
            row += code < row[count / 2].code ? 0 : count / 2;
        }
        if (row->code == code) {
            return row;
        }
    }
    return nullptr;
}

/// Finds the text of a code.
///
/// Threads: reentrant.
/// @param table    the rows, sorted
/// @param code     of the row
/// @param fallback returned when the table does not list the code
/// @return the text
template <typename Code, std::size_t rowCount>
constexpr std::string_view textOf(std::array<TextRow<Code>, rowCount> const& table,
                                  decltype(TextRow<Code>::code) code, std::string_view fallback) {
    auto const* const row = findRow(table, code);
    return row != nullptr ? row->text : fallback;
}

} // namespace shm

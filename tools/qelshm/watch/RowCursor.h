// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The selected row and the window of visible rows.
#pragma once

#include "tools/qelshm/watch/RowList.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace qel::watch {

/// A list of rows with one selected row, and a window of a number of lines that always shows it. The list may become
/// empty at any time; then nothing is selected, and the operations that move do nothing. The selection comes back with
/// its row.
///
/// Threads: reentrant.
class RowCursor {
public:
    /// Replaces the rows. Selects the row that was selected before; else the row of its point; else the one that stands
    /// in its place.
    void show(std::vector<Row> rows);

    /// Sets the number of lines of the window; at least one is assumed.
    void setPage(std::size_t lines);

    std::vector<Row> const& rows() const { return rows_; }
    bool isEmpty() const { return rows_.empty(); }

    /// @return index of the selected row; 0 if there are none
    std::size_t index() const { return selected_; }
    /// @return the selected row; null if there are none
    Row const* row() const { return isEmpty() ? nullptr : &rows_[selected_]; }

    /// @return the first visible row
    std::size_t top() const { return top_; }
    /// @return the row behind the last visible one
    std::size_t end() const;
    std::size_t page() const { return page_; }

    /// Finds a row by what it shows.
    std::optional<std::size_t> find(bool isPoint, long long svid) const;

    /// Selects a row; the window moves no more than it must. Does nothing if there is no such row.
    void select(std::size_t row);

    /// Selects the row of a point or a value.
    /// @return whether there is one
    bool select(bool isPoint, long long svid);

    /// Goes down or up by a number of rows, at most to the last or first one.
    void moveBy(std::size_t rows, bool isDown);

    /// Moves the window by a number of rows; the selection stays as long as it is visible.
    void scrollBy(std::size_t rows, bool isDown);

private:
    std::size_t lastTop() const { return rows_.size() > page_ ? rows_.size() - page_ : 0; }
    void keepSelection();

    std::vector<Row> rows_;
    std::size_t selected_ = 0;
    bool isPointSelected_ = true;
    long long selectedId_ = 0; ///< stays while there are no rows
    std::size_t top_ = 0;
    std::size_t page_ = 1;
};

} // namespace qel::watch

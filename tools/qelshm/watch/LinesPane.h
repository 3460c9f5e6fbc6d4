// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What is below the table: the graph, or lines in its place.
#pragma once

#include "tools/qelshm/watch/RowList.h"
#include "tools/qelshm/watch/WatchedUnit.h"
#include "tools/qelshm/watch/WhyView.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qel::watch {

/// What is below the table.
enum class Pane : std::uint8_t { Graph, Why, Events };

/// Chooses what is below the table, and which of its lines are visible: causes from the first one on, events up to the
/// newest one, unless they were scrolled. The graph has no lines.
///
/// Threads: reentrant.
class LinesPane {
public:
    Pane kind() const { return kind_; }

    /// Shows something else; the graph if it is shown already.
    void show(Pane kind);

    /// Sets the number of lines.
    void setSize(std::size_t lines) { size_ = lines; }

    /// Goes one line up or down, as far as there are lines.
    /// @param row the selected one; null for none
    void scroll(bool isUp, WatchedUnit const& unit, Row const* row);

    /// @param row the selected one; null for none
    /// @return the visible lines
    std::vector<StyledLine> lines(WatchedUnit const& unit, Row const* row) const;

private:
    std::vector<StyledLine> all(WatchedUnit const& unit, Row const* row) const;

    Pane kind_ = Pane::Graph;
    std::size_t size_ = 1;
    std::size_t scrolled_ = 0; ///< lines from the beginning, or from the newest event
};

} // namespace qel::watch

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The live table on the terminal.
#pragma once

#include "tools/qelshm/watch/Canvas.h"
#include "tools/qelshm/watch/DetailPane.h"
#include "tools/qelshm/watch/Pieces.h"
#include "tools/qelshm/watch/TableLayout.h"
#include "tools/qelshm/watch/WatchModel.h"

#include <string>
#include <vector>

namespace qel::watch {

/// Draws a model on the terminal and gives the user's input to it. See Canvas for the terminal.
///
/// Threads: thread-bound to the thread that made it. One object per process.
class WatchScreen {
public:
    /// @param isColoured whether colours are wanted
    /// @throws std::runtime_error when the terminal is not usable
    explicit WatchScreen(bool isColoured) : canvas_(isColoured), pane_(canvas_) {}

    /// Draws the model and tells it how many lines fit.
    void draw(WatchModel& model);

    /// Applies all keys and uses of the mouse since the last call. Does not wait.
    void handleInput(WatchModel& model);

private:
    /// How the lines of the screen are distributed.
    struct Lines {
        int header; ///< with the titles of the columns
        int table;
        int pane;
        int footer;
    };

    Lines linesFor(WatchModel const& model) const;
    int putPieces(int line, int column, std::vector<Piece> const& pieces);
    void drawHeader(WatchModel const& model, int lines);
    void drawFacts(HeaderView const& view, int line);
    void drawCounts(HeaderView const& view, int line);
    void drawTitles(WatchModel const& model, TableLayout const& layout, int line);
    void drawRow(int line, RowView const& row, TableLayout const& layout);
    int drawName(int line, RowView const& row, TableLayout const& layout, Emphasis const& emphasis);
    void drawTable(WatchModel const& model, TableLayout const& layout, Lines const& lines);
    void drawFooter(WatchModel const& model);
    void drawHelp();

    Canvas canvas_;
    DetailPane pane_;
    int tableLine_ = 0; ///< the first one of the table, as drawn
};

} // namespace qel::watch

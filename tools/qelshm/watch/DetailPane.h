// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The part of the screen below the table.
#pragma once

#include "tools/qelshm/watch/Canvas.h"
#include "tools/qelshm/watch/GraphScale.h"
#include "tools/qelshm/watch/WatchModel.h"

namespace qel::watch {

/// Draws the selected point with its values and a graph, or the lines of another pane.
///
/// Threads: thread-bound to the canvas's thread.
class DetailPane {
public:
    /// @param canvas must outlive the pane
    explicit DetailPane(Canvas& canvas) : canvas_(canvas) {}

    /// Draws into some lines.
    /// @param line   the first one
    /// @param height how many
    void draw(WatchModel const& model, int line, int height);

    /// Lines of the graph on a screen with so many lines.
    static int graphHeight(int screenLines);

    /// Lines beside those of the graph: title, the graph's title, the last line.
    static constexpr int otherLines = 3;

private:
    void drawValues(DetailView const& detail, Area const& first, int height);
    void drawBars(DetailView const& detail, Area const& first, int height);
    void drawCurves(DetailView const& detail, Area const& first, int height);
    int drawAxis(unsigned short key, GraphScale const& scale, Area const& first, int height);
    void drawGraph(DetailView const& detail, Area const& first, int height);

    Canvas& canvas_;
};

} // namespace qel::watch

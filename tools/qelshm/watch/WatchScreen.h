// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The live table on the terminal.
#pragma once

#include "tools/qelshm/watch/WatchModel.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

struct screen; // of curses, SCREEN there

namespace qel::watch {

/// Takes the terminal over and draws a model on it; the terminal is as before once the object is destroyed. Takes
/// care of the size of the terminal and of being suspended. Without UTF-8, all is drawn in ASCII; without colours, or
/// with NO_COLOR, in attributes alone.
///
/// Threads: one object per process, bound to one thread.
class WatchScreen {
public:
    /// Throws std::runtime_error when the terminal cannot be used.
    WatchScreen();
    ~WatchScreen();
    WatchScreen(WatchScreen const&) = delete;
    WatchScreen& operator=(WatchScreen const&) = delete;

    /// Draws what has changed, and tells the model how many rows it may show.
    void draw(WatchModel& model);

    /// The next key that was pressed, as curses numbers it; nothing when none is left. Does not wait.
    static std::optional<int> key();

private:
    struct Area;
    enum class Pair : short;

    static Pair pairOf(Severity severity);
    void put(Area const& area, std::string const& text, unsigned attributes, Pair pair) const;
    void drawHeader(WatchModel const& model) const;
    void drawTitles(WatchModel const& model) const;
    void drawRow(int line, RowView const& row) const;
    void drawTable(WatchModel const& model, int lines) const;
    void drawPane(WatchModel const& model, int line) const;
    void drawValues(PaneView const& pane, int line, int width) const;
    void drawGraph(WatchModel const& model, PaneView const& pane, int line, int column) const;
    void drawFooter(WatchModel const& model) const;
    void drawHelp() const;

    struct Delete {
        void operator()(::screen* terminal) const;
    };
    std::unique_ptr<::screen, Delete> terminal_;
    bool isUtf8_;
    bool hasColours_ = false;
};

} // namespace qel::watch

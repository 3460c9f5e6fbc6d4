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

/// Takes over the terminal, draws a model on it and restores the terminal in the end. Follows the size of the terminal;
/// can be suspended. Draws in ASCII if the terminal has no UTF-8, and with attributes alone if it has no colours.
///
/// Threads: thread-bound to the thread that made it. One object per process.
class WatchScreen {
public:
    /// @param isColoured whether colours are wanted
    /// @throws std::runtime_error when the terminal is not usable
    explicit WatchScreen(bool isColoured);
    ~WatchScreen();
    WatchScreen(WatchScreen const&) = delete;
    WatchScreen& operator=(WatchScreen const&) = delete;

    /// Draws what has changed and tells the model how many rows fit.
    void draw(WatchModel& model);

    /// Takes the next key that was pressed. Does not wait.
    /// @return its number in curses; nothing when none is left
    static std::optional<int> key();

private:
    struct Area;

    void put(Area const& area, std::string const& text, unsigned attributes, short pair = 0) const;
    void putState(Area const& area, std::string const& text, unsigned attributes, tools::Style style) const;
    void drawHeader(WatchModel const& model) const;
    void drawTitles(WatchModel const& model) const;
    void drawRow(int line, RowView const& row) const;
    void drawTable(WatchModel const& model, int lines) const;
    void drawDetail(WatchModel const& model, int line) const;
    void drawValues(DetailView const& detail, int line, int width) const;
    void drawGraph(WatchModel const& model, DetailView const& detail, int line, int column) const;
    void drawFooter(WatchModel const& model) const;
    void drawHelp() const;

    struct Delete {
        void operator()(::screen* terminal) const;
    };
    std::unique_ptr<::screen, Delete> terminal_;
    bool isUtf8_;
    bool isColoured_;
};

} // namespace qel::watch

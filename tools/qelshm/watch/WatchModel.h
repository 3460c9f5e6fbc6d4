// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The contents of the live table, without a terminal.
#pragma once

#include "tools/qelshm/watch/CurveMarks.h"
#include "tools/qelshm/watch/DetailView.h"
#include "tools/qelshm/watch/FilterPrompt.h"
#include "tools/qelshm/watch/HeaderView.h"
#include "tools/qelshm/watch/LinesPane.h"
#include "tools/qelshm/watch/RowCursor.h"
#include "tools/qelshm/watch/RowList.h"
#include "tools/qelshm/watch/RowView.h"
#include "tools/qelshm/watch/WatchSettings.h"
#include "tools/qelshm/watch/WatchedUnit.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qel::watch {

/// What the user can do with the table.
enum class Action : std::uint8_t {
    Up,
    Down,
    PageUp,
    PageDown,
    First,
    Last,
    ScrollUp, ///< moves the window, by a few rows
    ScrollDown,
    Toggle, ///< folds or unfolds the point
    Open,   ///< unfolds the point; in an unfolded one, goes to its first row
    Close,  ///< folds the point; from a folded one or a value, goes to the point above
    OpenAll,
    CloseAll,
    Sort,      ///< next order
    Filter,    ///< starts typing of the filter
    Clear,     ///< removes the filter
    Follow,    ///< starts or stops going to each new alarm
    NextAlarm, ///< goes to the next value in alarm; behind the last one, to the first
    PreviousAlarm,
    Pause,      ///< keeps or no longer keeps what is shown
    Statistics, ///< shows or hides minimum, maximum, mean and rate
    Restart,    ///< begins minimum, maximum, mean and rate anew
    Mark,       ///< keeps or no longer keeps the value's curve in the graph
    LongerSpan, ///< of the graph
    ShorterSpan,
    Why,    ///< shows why the selected point is not "On", or the graph again
    Events, ///< shows what happened, or the graph again
    PaneUp, ///< to earlier lines of the pane
    PaneDown,
    Help,
    Quit,
};

/// A table of points and values that can be folded, sorted and searched, with a cursor and a window of some lines, and a
/// pane below it. It receives snapshots and actions and says what is visible. While it is paused, snapshots are still
/// taken in, but it shows the unit as it was. Memory: see ValueTracker; while it is paused, twice.
///
/// Threads: reentrant.
class WatchModel {
public:
    /// @param names    the selection
    /// @param interval time between two snapshots; determines how long a bucket of the histories lasts
    WatchModel(WatchedNames names, std::chrono::milliseconds interval, Freshness const& freshness = {},
               WatchSettings const& settings = {});

    /// Takes the next snapshot.
    void update(Snapshot const& snapshot);

    /// Sets the number of table lines on the screen; at least one is assumed.
    void setPage(std::size_t lines) { cursor_.setPage(lines); }

    /// Sets the number of lines of the pane.
    void setPaneLines(std::size_t lines) { pane_.setSize(lines); }

    /// Does what the user asks for.
    void handle(Action action);

    /// Selects a visible row; folds or unfolds it if it is selected already. Does nothing if there is no such row.
    /// @param line from the top of the window
    void click(std::size_t line);

    /// @return whether the user is typing the filter
    bool isTyping() const { return prompt_.isTyping(); }
    /// Appends a character to the filter.
    void type(char character);
    /// Removes the last character of the filter.
    void erase();
    /// Completes the last word of the filter to a name of the unit.
    void complete();
    /// Keeps the filter as typed.
    void endTyping() { prompt_.end(); }
    std::string const& filterText() const { return prompt_.text(); }
    /// @return the names that complete() chose among
    std::vector<std::string> const& candidates() const { return prompt_.candidates(); }

    /// Shows a line until the user does something.
    void say(std::string text) { message_ = std::move(text); }

    bool isHelp() const { return isHelp_; }
    bool isDone() const { return isDone_; }
    bool isFollowing() const { return isFollowing_; }
    bool isPaused() const { return frozen_.has_value(); }
    Pane pane() const { return pane_.kind(); }
    SortOrder order() const { return settings_.order; }
    WatchSettings const& settings() const { return settings_; }

    HeaderView header() const;

    /// @return sentences that say why there is nothing to show; none if the region has content
    std::vector<std::string> message() const { return messageOf(shown()); }

    std::size_t rowCount() const { return cursor_.rows().size(); }
    std::size_t selected() const { return cursor_.index(); }

    /// @return the first visible row
    std::size_t top() const { return cursor_.top(); }

    std::vector<RowView> visibleRows() const;

    DetailView detail() const;

    /// @return the visible lines of a pane that is not the graph
    std::vector<StyledLine> paneLines() const { return pane_.lines(shown(), cursor_.row()); }

private:
    WatchedUnit const& shown() const { return frozen_ ? *frozen_ : unit_; }
    RowViewInput viewInput() const { return {shown(), freshness_, marks_.svids()}; }
    UnitPoint const& pointOf(Row const& row) const;
    void rebuildRows();
    void fold(bool isFolded);
    void foldAll(bool isFolded);
    void close();
    void open();
    bool reveal(std::uint32_t value);
    void toggle();
    bool handleMode(Action action);
    bool handlePane(Action action);
    void handleRow(Action action);
    void sort();
    void pause();
    void mark();
    void changeSpan(bool isLonger);
    void goToAlarm(bool isForward);
    void followAlarms(std::vector<ValueChange> const& changes);
    void applyFilter();

    WatchedUnit unit_;
    std::optional<WatchedUnit> frozen_; ///< while paused: as it was
    Freshness freshness_;
    WatchSettings settings_;

    Folds folds_;
    FilterPrompt prompt_;
    TextFilter filter_;
    RowCursor cursor_;
    CurveMarks marks_;
    LinesPane pane_;
    std::string message_;

    bool isHelp_ = false;
    bool isDone_ = false;
    bool isFollowing_ = false;
};

} // namespace qel::watch

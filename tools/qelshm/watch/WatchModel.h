// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The contents of the live table, without a terminal.
#pragma once

#include "tools/qelshm/terminal/Style.h"
#include "tools/qelshm/watch/RowList.h"
#include "tools/qelshm/watch/SnapshotSource.h"
#include "tools/qelshm/watch/UnitStructure.h"
#include "tools/qelshm/watch/ValueTracker.h"
#include "tools/qelshm/watch/WatchedNames.h"

#include "inspect/image/RegionStatus.h"

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
    Toggle, ///< folds or unfolds the point
    Open,   ///< unfolds the point; in an unfolded one, goes to its first row
    Close,  ///< folds the point; from a folded one or a value, goes to the point above
    OpenAll,
    CloseAll,
    Sort,   ///< next order
    Filter, ///< starts typing of the filter
    Clear,  ///< removes the filter
    Follow, ///< starts or stops going to each new alarm
    Help,
    Quit,
};

/// The lines above the table. Reentrant.
struct HeaderView {
    std::string condition; ///< "active"
    bool isLive;           ///< there is content to show
    std::string state;     ///< global state; without content, this and the next four are empty
    tools::Style style;    ///< of the state
    std::string led;       ///< "green"
    std::size_t points;
    std::size_t values;
    unsigned structureChanges;
    std::string lastDelivery; ///< "2s ago"; "-" before the first one
    std::string time;
    std::string note; ///< what happened a moment ago; "" for nothing
};

/// A row of the table. Reentrant.
struct RowView {
    bool isPoint;
    bool isFoldable;
    bool isFolded;
    bool isSelected;
    bool isFresh; ///< changed a moment ago
    std::uint32_t depth;
    std::string name;
    std::string type;  ///< of a point
    std::string value; ///< of a value, with its unit
    std::string state;
    tools::Style style; ///< of the state
    std::string age;    ///< since the last delivery; with '>' if none was seen
};

/// The selected point and value in detail; the texts are empty if nothing is selected. Reentrant.
struct DetailView {
    std::string path;
    std::string svid;
    std::string type;
    std::string state;
    tools::Style style;          ///< of the state
    std::vector<RowView> values; ///< of the point; the one in the graph is selected
    std::string graphName;       ///< name of that value
    std::string delivered;       ///< time of its last delivery, by the writer's clock
    unsigned short key;
    History const* history; ///< null without a value; valid until the next update
    std::uint64_t newestBucket;
};

/// A table of points and values that can be folded, sorted and searched, with a cursor and a window of some lines. It
/// receives snapshots and actions and says what is visible. Memory: see ValueTracker.
///
/// Threads: reentrant.
class WatchModel {
public:
    /// @param names    the selection
    /// @param interval time between two snapshots; determines how long a bucket of the histories lasts
    WatchModel(WatchedNames names, std::chrono::milliseconds interval);

    /// Shows a snapshot instead of the previous one.
    void update(Snapshot const& snapshot);

    /// Sets the number of table lines on the screen; at least one is assumed.
    void setPage(std::size_t lines);

    /// Does what the user asks for.
    void handle(Action action);

    /// @return whether the user is typing the filter
    bool isTyping() const { return isTyping_; }

    /// Appends a character to the filter.
    void type(char character);

    /// Removes the last character of the filter.
    void erase();

    /// Keeps the filter as typed.
    void endTyping() { isTyping_ = false; }

    bool isHelp() const { return isHelp_; }
    bool isDone() const { return isDone_; }
    bool isFollowing() const { return isFollowing_; }
    SortOrder order() const { return order_; }
    std::string const& filterText() const { return filterText_; }

    HeaderView header() const;

    /// @return sentences that say why there is nothing to show; none if the region has content
    std::vector<std::string> message() const;

    std::size_t rowCount() const { return rows_.size(); }
    std::size_t selected() const { return selected_; }

    /// @return the first visible row
    std::size_t top() const { return top_; }

    std::vector<RowView> visibleRows() const;

    DetailView detail() const;

    /// @return the time span of a graph with so many columns, ms
    std::uint64_t graphSpan(std::size_t columns) const;

private:
    bool isLive() const;
    void rebuildRows();
    void keepSelection();
    std::optional<std::size_t> rowOf(bool isPoint, long long svid) const;
    void select(std::size_t row);
    void moveBy(std::size_t rows, bool isDown);
    void fold(bool isFolded);
    void foldAll(bool isFolded);
    void close();
    void open();
    void reveal(std::uint32_t value);
    void toggle();
    void handleRow(Action action);
    void followAlarms(std::vector<ValueChange> const& changes);
    void setFilter(std::string text);
    UnitPoint const& pointOf(Row const& row) const;
    eStatus_Bits stateOf(UnitPoint const& point) const;
    eStatus_Bits stateOf(UnitValue const& value) const;
    RowView pointView(UnitPoint const& point) const;
    RowView valueView(UnitValue const& value) const;
    RowView viewOf(std::size_t index) const;

    Snapshot snapshot_;
    inspect::RegionStatus status_;
    UnitStructure structure_;
    ValueTracker tracker_;
    unsigned structureChanges_ = 0;
    std::optional<std::uint64_t> began_;      ///< ticks of the first snapshot
    std::optional<std::uint64_t> delivered_;  ///< ticks of the last delivery of any value
    std::optional<std::uint64_t> reattached_; ///< ticks at which another object was opened

    Folds folds_;
    SortOrder order_ = SortOrder::Tree;
    std::string filterText_;
    TextFilter filter_;
    std::vector<Row> rows_;
    std::size_t selected_ = 0;
    bool isPointSelected_ = true;
    long long selectedId_ = 0; ///< stays while there are no rows
    std::size_t top_ = 0;
    std::size_t page_ = 1;

    bool isTyping_ = false;
    bool isHelp_ = false;
    bool isDone_ = false;
    bool isFollowing_ = false;
};

} // namespace qel::watch

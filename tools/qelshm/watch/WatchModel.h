// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the live table shows, without a terminal.
#pragma once

#include "tools/qelshm/watch/Look.h"
#include "tools/qelshm/watch/RowList.h"
#include "tools/qelshm/watch/StateInfo.h"
#include "tools/qelshm/watch/UnitStructure.h"
#include "tools/qelshm/watch/ValueTracker.h"
#include "tools/qelshm/watch/WatchAction.h"
#include "tools/qelshm/watch/WatchedNames.h"

#include "inspect/image/RegionStatus.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qel::watch {

struct HeaderView {
    std::string condition; ///< "active"
    bool isLive;           ///< there is content to show
    std::string state;     ///< the global one; this and the next two are empty without content
    Severity severity;
    std::string led; ///< "green"
    std::size_t points;
    std::size_t values;
    unsigned structureChanges;
    std::string lastDelivery; ///< "2s ago"; "-" before the first that was seen
    std::string time;
    std::string note; ///< what happened a moment ago, or nothing
};

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
    Severity severity;
    std::string age; ///< since the last delivery; with '>' when none was seen
};

/// What is selected, in detail; empty texts when nothing is.
struct PaneView {
    std::string path;
    std::string svid;
    std::string type;
    std::string state;
    Severity severity;
    std::vector<RowView> values; ///< of the point; the one that the graph shows is selected
    std::string graphName;       ///< name of that value
    std::string delivered;       ///< when it was delivered last, by the writer's clock
    unsigned short key;
    History const* history; ///< null without a value; valid until the next update
    std::uint64_t newestBucket;
};

/// A table of points and values that folds, is sorted and searched, with a cursor and a window of some lines. Pure:
/// it gets images and times, and is asked what there is to see. Memory: see ValueTracker.
///
/// Threads: not shared.
class WatchModel {
public:
    /// @param interval between two looks; what the histories' buckets are chosen by
    WatchModel(WatchedNames names, std::chrono::milliseconds interval);

    void update(Look const& look);

    /// Lines that the table has on the screen; at least one is assumed.
    void setPage(std::size_t lines);

    void handle(Action action);

    /// While the filter is typed: adds a character, takes the last one away, ends typing.
    bool isTyping() const { return isTyping_; }
    void type(char character);
    void erase();
    void endTyping() { isTyping_ = false; }

    bool isHelp() const { return isHelp_; }
    bool isDone() const { return isDone_; }
    bool isFollowing() const { return isFollowing_; }
    SortOrder order() const { return order_; }
    std::string const& filterText() const { return filterText_; }

    HeaderView header() const;

    /// Why there is nothing to show, in sentences; empty when the region has content.
    std::vector<std::string> message() const;

    std::size_t rowCount() const { return rows_.size(); }
    std::size_t selected() const { return selected_; }
    std::size_t top() const { return top_; } ///< first row that is on the screen

    /// Rows from the top on, as many as are on the screen.
    std::vector<RowView> visibleRows() const;

    PaneView pane() const;

    /// How far back a graph of so many columns goes, ms.
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

    Look look_;
    inspect::RegionStatus status_;
    UnitStructure structure_;
    ValueTracker tracker_;
    unsigned structureChanges_ = 0;
    std::optional<std::uint64_t> began_;      ///< ticks of the first look
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

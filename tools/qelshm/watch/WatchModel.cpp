// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchModel.h"

#include "tools/common/TimeText.h"
#include "tools/qelshm/app/RegionInput.h"
#include "tools/qelshm/terminal/AgeText.h"

#include "format/HexText.h"
#include "format/StateName.h"
#include "format/ValueFormatter.h"
#include "inspect/naming/LedText.h"
#include "inspect/naming/StateClass.h"
#include "region/QelShmMVal.h"
#include "region/SvidParts.h"

#include <algorithm>
#include <utility>

namespace qel::watch {

namespace {

constexpr std::uint64_t flashMs = 600; // shorter than the second between deliveries of most units
constexpr std::uint64_t noteMs = 10000;
constexpr std::uint64_t shortestBucketMs = 2000; // with History::length, three minutes
constexpr std::uint64_t msPerSecond = 1000;

bool isRecent(std::optional<std::uint64_t> since, std::uint64_t limit) {
    return since && *since < limit;
}

bool isAlarm(eStatus_Bits state) {
    return inspect::classOf(state) == inspect::StateClass::Alarm;
}

} // namespace

WatchModel::WatchModel(WatchedNames names, std::chrono::milliseconds interval)
    : structure_(std::move(names)),
      tracker_(std::max(shortestBucketMs, static_cast<std::uint64_t>(interval.count()))) {}

bool WatchModel::isLive() const {
    return status_.condition == inspect::Condition::Active;
}

void WatchModel::update(Snapshot const& snapshot) {
    bool const wasLive = isLive();
    bool const isOtherObject = snapshot.objects != snapshot_.objects;
    if (isOtherObject && snapshot_.objects != 0) {
        reattached_ = snapshot.ticks;
    }
    began_ = began_.value_or(snapshot.ticks);
    snapshot_ = snapshot;
    status_ = inspect::regionStatus(snapshot.source, snapshot.image, snapshot.now, std::nullopt);
    bool const isChanged = structure_.update(isLive() ? snapshot.image : inspect::Image());
    if (isChanged && wasLive && isLive() && !isOtherObject) {
        ++structureChanges_;
    }
    auto const changes = tracker_.update(structure_, snapshot.image, snapshot.ticks);
    auto const& values = structure_.values();
    if (std::any_of(values.begin(), values.end(), [&](UnitValue const& value) {
            return tracker_.sinceDelivery(value.pos, snapshot.ticks) == std::uint64_t{0};
        })) {
        delivered_ = snapshot.ticks;
    }
    rebuildRows();
    if (isFollowing_) {
        followAlarms(changes);
    }
}

void WatchModel::rebuildRows() {
    rows_ = rowsOf({structure_, snapshot_.image, tracker_, folds_, filter_, order_, snapshot_.ticks});
    keepSelection();
}

/// The row that was selected before; else its point's; else what stands in its place.
void WatchModel::keepSelection() {
    if (rows_.empty()) {
        selected_ = 0;
        top_ = 0;
        return;
    }
    auto row = rowOf(isPointSelected_, selectedId_);
    if (!row && !isPointSelected_) {
        row = rowOf(true, shm::pointSvid(selectedId_));
    }
    select(row.value_or(std::min(selected_, rows_.size() - 1)));
}

std::optional<std::size_t> WatchModel::rowOf(bool isPoint, long long svid) const {
    auto const found = std::find_if(rows_.begin(), rows_.end(), [&](Row const& row) {
        auto const id =
            row.isPoint ? structure_.points()[row.index].svid : structure_.values()[row.index].svid;
        return row.isPoint == isPoint && id == svid;
    });
    return found == rows_.end() ? std::nullopt
                                : std::optional(static_cast<std::size_t>(found - rows_.begin()));
}

/// The window moves no more than it must to show the row.
void WatchModel::select(std::size_t row) {
    selected_ = row;
    isPointSelected_ = rows_[row].isPoint;
    selectedId_ = isPointSelected_ ? structure_.points()[rows_[row].index].svid
                                   : structure_.values()[rows_[row].index].svid;
    auto const lastTop = rows_.size() > page_ ? rows_.size() - page_ : 0;
    auto const lowest = row + 1 > page_ ? row + 1 - page_ : 0;
    top_ = std::min(std::clamp(top_, lowest, row), lastTop);
}

void WatchModel::setPage(std::size_t lines) {
    page_ = std::max<std::size_t>(lines, 1);
    keepSelection();
}

void WatchModel::moveBy(std::size_t rows, bool isDown) {
    select(isDown ? std::min(selected_ + rows, rows_.size() - 1) : selected_ - std::min(selected_, rows));
}

UnitPoint const& WatchModel::pointOf(Row const& row) const {
    return structure_.points()[row.isPoint ? row.index : structure_.values()[row.index].point];
}

void WatchModel::fold(bool isFolded) {
    folds_.set(pointOf(rows_[selected_]).svid, isFolded);
    rebuildRows();
}

void WatchModel::foldAll(bool isFolded) {
    for (auto const& point : structure_.points()) {
        folds_.set(point.svid, isFolded);
    }
    // The selected row may be hidden now; what stays of its branch is the top-level point.
    auto const* point = rows_.empty() ? nullptr : &pointOf(rows_[selected_]);
    while (isFolded && point != nullptr && point->parent != inspect::NO_NODE) {
        point = &structure_.points()[point->parent];
    }
    rebuildRows();
    if (isFolded && point != nullptr) {
        select(rowOf(true, point->svid).value_or(selected_));
    }
}

void WatchModel::close() {
    auto const& row = rows_[selected_];
    if (row.isPoint && row.isFoldable && !row.isFolded && filter_.isEmpty()) {
        fold(true);
        return;
    }
    auto const& point = pointOf(row);
    auto const up = !row.isPoint                       ? rowOf(true, point.svid)
                    : point.parent == inspect::NO_NODE ? std::nullopt
                                                       : rowOf(true, structure_.points()[point.parent].svid);
    select(up.value_or(selected_));
}

void WatchModel::open() {
    auto const& row = rows_[selected_];
    if (row.isPoint && row.isFolded) {
        fold(false);
    } else if (row.isPoint && row.isFoldable) {
        moveBy(1, true);
    }
}

void WatchModel::reveal(std::uint32_t value) {
    auto point = structure_.values()[value].point;
    while (point != inspect::NO_NODE) {
        folds_.set(structure_.points()[point].svid, false);
        point = structure_.points()[point].parent;
    }
    rebuildRows();
    select(rowOf(false, structure_.values()[value].svid).value_or(selected_));
}

/// In a flat order, shows the value in the tree.
void WatchModel::toggle() {
    auto const row = rows_[selected_];
    if (row.isPoint && row.isFoldable && filter_.isEmpty()) {
        fold(!row.isFolded);
    } else if (!row.isPoint && order_ != SortOrder::Tree) {
        order_ = SortOrder::Tree;
        reveal(row.index);
    }
}

void WatchModel::followAlarms(std::vector<ValueChange> const& changes) {
    for (auto const& change : changes) {
        auto const state = stateOf(structure_.values()[change.value]);
        if (isAlarm(state) && !isAlarm(change.before)) {
            reveal(change.value);
        }
    }
}

void WatchModel::setFilter(std::string text) {
    filterText_ = std::move(text);
    filter_ = TextFilter(filterText_);
    rebuildRows();
}

void WatchModel::type(char character) {
    setFilter(filterText_ + character);
}

void WatchModel::erase() {
    setFilter(filterText_.substr(0, filterText_.empty() ? 0 : filterText_.size() - 1));
}

void WatchModel::handle(Action action) {
    if (isHelp_) {
        isHelp_ = false; // any key ends it
        return;
    }
    switch (action) {
    case Action::Sort:
        order_ =
            order_ == SortOrder::Age ? SortOrder::Tree : static_cast<SortOrder>(static_cast<int>(order_) + 1);
        rebuildRows();
        return;
    case Action::Filter:
        isTyping_ = true;
        return;
    case Action::Clear:
        isTyping_ = false;
        setFilter({});
        return;
    case Action::Follow:
        isFollowing_ = !isFollowing_;
        return;
    case Action::Help:
        isHelp_ = true;
        return;
    case Action::Quit:
        isDone_ = true;
        return;
    case Action::OpenAll:
    case Action::CloseAll:
        foldAll(action == Action::CloseAll);
        return;
    default:
        break;
    }
    if (!rows_.empty()) {
        handleRow(action);
    }
}

void WatchModel::handleRow(Action action) {
    switch (action) {
    case Action::Up:
    case Action::Down:
        moveBy(1, action == Action::Down);
        break;
    case Action::PageUp:
    case Action::PageDown:
        moveBy(page_, action == Action::PageDown);
        break;
    case Action::First:
    case Action::Last:
        moveBy(rows_.size(), action == Action::Last);
        break;
    case Action::Toggle:
        toggle();
        break;
    case Action::Open:
        open();
        break;
    case Action::Close:
        close();
        break;
    default:
        break;
    }
}

HeaderView WatchModel::header() const {
    HeaderView view{};
    view.condition = inspect::conditionName(status_.condition);
    view.isLive = isLive();
    if (view.isLive) {
        view.state = shm::stateName(status_.globalState);
        view.style = tools::stateStyle(status_.globalState);
        view.led = inspect::ledText(status_.globalState);
        view.points = status_.pointsUsed;
        view.values = status_.valuesUsed;
    }
    view.structureChanges = structureChanges_;
    view.lastDelivery = delivered_ ? tools::shortDurationText(snapshot_.ticks - *delivered_) + " ago" : "-";
    view.time = tools::timeText(snapshot_.now / msPerSecond * msPerSecond);
    if (reattached_ && snapshot_.ticks - *reattached_ < noteMs) {
        view.note = "new shared-memory object opened";
    }
    return view;
}

std::vector<std::string> WatchModel::message() const {
    if (isLive()) {
        return {};
    }
    return {"Waiting: " + tools::conditionProblem(status_) + '.',
            "The table appears as soon as the region is active."};
}

eStatus_Bits WatchModel::stateOf(UnitPoint const& point) const {
    return snapshot_.image.region().points[point.pos].state;
}

eStatus_Bits WatchModel::stateOf(UnitValue const& value) const {
    return snapshot_.image.region().values[value.pos].state;
}

RowView WatchModel::pointView(UnitPoint const& point) const {
    auto const state = stateOf(point);
    RowView view{};
    view.isPoint = true;
    view.name = point.name;
    view.type = point.type;
    view.state = shm::stateName(state);
    view.style = tools::stateStyle(state);
    return view;
}

RowView WatchModel::valueView(UnitValue const& value) const {
    auto const& slot = snapshot_.image.region().values[value.pos];
    auto const age = tracker_.sinceDelivery(value.pos, snapshot_.ticks);
    RowView view{};
    view.isFresh = isRecent(tracker_.sinceChange(value.pos, snapshot_.ticks), flashMs);
    view.name = value.name;
    view.value = tav::ValueFormatter::str(shm::QelShmMVal(&slot));
    view.state = shm::stateName(slot.state);
    view.style = tools::stateStyle(slot.state);
    view.age = age ? tools::shortDurationText(*age)
                   : '>' + tools::shortDurationText(snapshot_.ticks - began_.value_or(snapshot_.ticks));
    return view;
}

RowView WatchModel::viewOf(std::size_t index) const {
    auto const& row = rows_[index];
    auto view =
        row.isPoint ? pointView(structure_.points()[row.index]) : valueView(structure_.values()[row.index]);
    if (!row.isPoint && order_ != SortOrder::Tree) {
        view.name = pointOf(row).path + "  " + view.name;
    }
    view.depth = row.depth;
    view.isFoldable = row.isFoldable;
    view.isFolded = row.isFolded;
    view.isSelected = index == selected_;
    return view;
}

std::vector<RowView> WatchModel::visibleRows() const {
    std::vector<RowView> views;
    auto const end = std::min(rows_.size(), top_ + page_);
    for (auto row = top_; row < end; ++row) {
        views.push_back(viewOf(row));
    }
    return views;
}

DetailView WatchModel::detail() const {
    DetailView view{};
    if (rows_.empty()) {
        return view;
    }
    auto const& row = rows_[selected_];
    auto const& point = pointOf(row);
    auto const state = stateOf(point);
    view.path = point.path;
    view.svid = shm::svidText(point.svid);
    view.type = point.type;
    view.state = shm::stateName(state);
    view.style = tools::stateStyle(state);
    view.newestBucket = tracker_.bucket(snapshot_.ticks);
    auto const shown = row.isPoint ? point.firstValue : row.index;
    for (auto index = point.firstValue; index < point.firstValue + point.valueCount; ++index) {
        auto const& value = structure_.values()[index];
        view.values.push_back(valueView(value));
        if (index == shown) {
            auto const delivered = snapshot_.image.region().values[value.pos].at;
            view.values.back().isSelected = true;
            view.graphName = value.name;
            view.delivered = delivered == 0 ? "never" : tools::timeText(delivered);
            view.key = value.key;
            view.history = tracker_.history(value.pos);
        }
    }
    return view;
}

std::uint64_t WatchModel::graphSpan(std::size_t columns) const {
    return std::min(columns, History::length) * tracker_.bucketMs();
}

} // namespace qel::watch

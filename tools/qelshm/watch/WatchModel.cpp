// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchModel.h"

#include "tools/qelshm/terminal/AgeText.h"
#include "tools/qelshm/watch/AlarmSearch.h"

#include <algorithm>
#include <utility>

namespace qel::watch {

namespace {

constexpr std::size_t scrolledRows = 3;

} // namespace

WatchModel::WatchModel(WatchedNames names, std::chrono::milliseconds interval, Freshness const& freshness,
                       WatchSettings const& settings)
    : unit_(std::move(names), interval),
      freshness_(freshness),
      settings_(settings) {}

void WatchModel::update(Snapshot const& snapshot) {
    auto const changes = unit_.update(snapshot);
    if (isPaused()) {
        return;
    }
    rebuildRows();
    if (isFollowing_) {
        followAlarms(changes);
    }
}

void WatchModel::rebuildRows() {
    auto const& unit = shown();
    auto const& snapshot = unit.snapshot();
    cursor_.show(rowsOf({unit.structure(), snapshot.image, unit.tracker(), folds_, filter_, settings_.order,
                         snapshot.ticks}));
}

UnitPoint const& WatchModel::pointOf(Row const& row) const {
    auto const& structure = shown().structure();
    return structure.points()[row.isPoint ? row.index : structure.values()[row.index].point];
}

void WatchModel::fold(bool isFolded) {
    folds_.set(pointOf(*cursor_.row()).svid, isFolded);
    rebuildRows();
}

void WatchModel::foldAll(bool isFolded) {
    auto const& points = shown().structure().points();
    for (auto const& point : points) {
        folds_.set(point.svid, isFolded);
    }
    // The selected row may be hidden now; what stays of its branch is the top-level point.
    auto const* point = cursor_.isEmpty() ? nullptr : &pointOf(*cursor_.row());
    while (isFolded && point != nullptr && point->parent != inspect::NO_NODE) {
        point = &points[point->parent];
    }
    rebuildRows();
    if (isFolded && point != nullptr) {
        cursor_.select(true, point->svid);
    }
}

void WatchModel::close() {
    auto const& row = *cursor_.row();
    if (row.isPoint && row.isFoldable && !row.isFolded && filter_.isEmpty()) {
        fold(true);
        return;
    }
    auto const& point = pointOf(row);
    if (!row.isPoint) {
        cursor_.select(true, point.svid);
    } else if (point.parent != inspect::NO_NODE) {
        cursor_.select(true, shown().structure().points()[point.parent].svid);
    }
}

void WatchModel::open() {
    auto const& row = *cursor_.row();
    if (row.isPoint && row.isFolded) {
        fold(false);
    } else if (row.isPoint && row.isFoldable) {
        cursor_.moveBy(1, true);
    }
}

/// Selects a value and unfolds the points above it.
/// @return false if the filter hides it
bool WatchModel::reveal(std::uint32_t value) {
    auto const& structure = shown().structure();
    auto const svid = structure.values()[value].svid;
    if (settings_.order == SortOrder::Tree && filter_.isEmpty()) {
        auto point = structure.values()[value].point;
        while (point != inspect::NO_NODE) {
            folds_.set(structure.points()[point].svid, false);
            point = structure.points()[point].parent;
        }
        rebuildRows();
    }
    return cursor_.select(false, svid);
}

/// In a flat order, shows the value in the tree.
void WatchModel::toggle() {
    auto const row = *cursor_.row();
    if (row.isPoint && row.isFoldable && filter_.isEmpty()) {
        fold(!row.isFolded);
    } else if (!row.isPoint && settings_.order != SortOrder::Tree) {
        settings_.order = SortOrder::Tree;
        rebuildRows();
        reveal(row.index);
    }
}

/// The value that appears for a selected point in a flat order is the first one of the point, or below it.
void WatchModel::sort() {
    auto const* const row = cursor_.row();
    auto const selected = row == nullptr ? std::nullopt : std::optional(*row);
    settings_.order = settings_.order == SortOrder::Age
                          ? SortOrder::Tree
                          : static_cast<SortOrder>(static_cast<int>(settings_.order) + 1);
    rebuildRows();
    if (!selected || !selected->isPoint || settings_.order == SortOrder::Tree) {
        return;
    }
    auto const& structure = shown().structure();
    auto const end = structure.points()[selected->index].end;
    for (auto const& value : structure.values()) {
        if (value.point >= selected->index && value.point < end && cursor_.select(false, value.svid)) {
            return;
        }
    }
}

/// Only the newest one that can be shown: several may have come with one snapshot.
void WatchModel::followAlarms(std::vector<ValueChange> const& changes) {
    for (auto change = changes.rbegin(); change != changes.rend(); ++change) {
        auto const state = unit_.stateOf(unit_.structure().values()[change->value]);
        if (isAlarm(state) && !isAlarm(change->before) && reveal(change->value)) {
            return;
        }
    }
}

void WatchModel::goToAlarm(bool isForward) {
    bool const isWhole = settings_.order == SortOrder::Tree && filter_.isEmpty();
    auto const value =
        isWhole ? alarmInTree(shown(), cursor_.row(), isForward) : alarmInRows(shown(), cursor_, isForward);
    if (value) {
        reveal(*value);
    } else {
        say(isWhole ? "no value is in alarm" : "no value in this list is in alarm");
    }
}

void WatchModel::pause() {
    if (isPaused()) {
        frozen_.reset();
        rebuildRows();
    } else {
        frozen_ = unit_;
    }
}

void WatchModel::mark() {
    auto const* const row = cursor_.row();
    auto const& values = shown().structure().values();
    auto const& point = pointOf(*row);
    if (row->isPoint && point.valueCount == 0) {
        say("this point has no value to mark");
        return;
    }
    auto const svid = row->isPoint ? values[point.firstValue].svid : row->svid;
    if (!marks_.toggle(svid)) {
        say(std::to_string(CurveMarks::most) +
            " values are marked, which is the most; m on one of them removes its mark");
    }
}

void WatchModel::changeSpan(bool isLonger) {
    auto const last = historyFactors.size() - 1;
    settings_.span = isLonger ? std::min(settings_.span + 1, last)
                              : settings_.span - std::min<std::size_t>(settings_.span, 1);
}

void WatchModel::applyFilter() {
    filter_ = TextFilter(prompt_.text());
    rebuildRows();
}

void WatchModel::type(char character) {
    prompt_.type(character);
    applyFilter();
}

void WatchModel::erase() {
    prompt_.erase();
    applyFilter();
}

void WatchModel::complete() {
    prompt_.complete(shown().structure());
    applyFilter();
}

void WatchModel::handle(Action action) {
    message_.clear();
    if (isHelp_) {
        isHelp_ = false; // any key ends it
        return;
    }
    if (!handleMode(action) && !handlePane(action) && !cursor_.isEmpty()) {
        handleRow(action);
    }
}

/// What can be done without any row.
/// @return whether the action is one of them
bool WatchModel::handleMode(Action action) {
    switch (action) {
    case Action::Sort:
        sort();
        break;
    case Action::Filter:
        prompt_.begin();
        break;
    case Action::Clear:
        prompt_.clear();
        applyFilter();
        break;
    case Action::Follow:
        isFollowing_ = !isFollowing_;
        break;
    case Action::NextAlarm:
    case Action::PreviousAlarm:
        goToAlarm(action == Action::NextAlarm);
        break;
    case Action::Pause:
        pause();
        break;
    case Action::Statistics:
        settings_.hasStatistics = !settings_.hasStatistics;
        break;
    case Action::Restart:
        unit_.restartStatistics();
        break;
    case Action::OpenAll:
    case Action::CloseAll:
        foldAll(action == Action::CloseAll);
        break;
    case Action::Help:
        isHelp_ = true;
        break;
    case Action::Quit:
        isDone_ = true;
        break;
    default:
        return false;
    }
    return true;
}

bool WatchModel::handlePane(Action action) {
    switch (action) {
    case Action::LongerSpan:
    case Action::ShorterSpan:
        changeSpan(action == Action::LongerSpan);
        break;
    case Action::Why:
        pane_.show(Pane::Why);
        break;
    case Action::Events:
        pane_.show(Pane::Events);
        break;
    case Action::PaneUp:
    case Action::PaneDown:
        pane_.scroll(action == Action::PaneUp, shown(), cursor_.row());
        break;
    default:
        return false;
    }
    return true;
}

void WatchModel::handleRow(Action action) {
    switch (action) {
    case Action::Up:
    case Action::Down:
        cursor_.moveBy(1, action == Action::Down);
        break;
    case Action::PageUp:
    case Action::PageDown:
        cursor_.moveBy(cursor_.page(), action == Action::PageDown);
        break;
    case Action::First:
    case Action::Last:
        cursor_.moveBy(cursor_.rows().size(), action == Action::Last);
        break;
    case Action::ScrollUp:
    case Action::ScrollDown:
        cursor_.scrollBy(scrolledRows, action == Action::ScrollDown);
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
    case Action::Mark:
        mark();
        break;
    default:
        break;
    }
}

void WatchModel::click(std::size_t line) {
    message_.clear();
    auto const row = cursor_.top() + line;
    if (row >= cursor_.end()) {
        return;
    }
    if (row == cursor_.index()) {
        toggle();
    } else {
        cursor_.select(row);
    }
}

HeaderView WatchModel::header() const {
    auto view = headerOf(shown(), freshness_);
    if (!message_.empty()) {
        view.note = message_;
    } else if (isPaused()) {
        auto const eventsOf = [](WatchedUnit const& unit) {
            return unit.events().dropped() + unit.events().events().size();
        };
        auto const events = eventsOf(unit_) - eventsOf(*frozen_);
        view.note = "paused " + tools::shortDurationText(unit_.snapshot().ticks - frozen_->snapshot().ticks) +
                    " ago, " + std::to_string(events) + (events == 1 ? " event" : " events") +
                    " since; p continues";
    }
    return view;
}

std::vector<RowView> WatchModel::visibleRows() const {
    return watch::visibleRows(viewInput(), cursor_, settings_.order);
}

DetailView WatchModel::detail() const {
    return detailOf(viewInput(), cursor_.row(), settings_.span);
}

} // namespace qel::watch

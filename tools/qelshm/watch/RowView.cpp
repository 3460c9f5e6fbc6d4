// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/RowView.h"

#include "tools/qelshm/terminal/AgeText.h"

#include "format/StateName.h"
#include "format/ValueFormatter.h"
#include "region/QelShmMVal.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace qel::watch {

namespace {

constexpr std::uint64_t flashMs = 600; // shorter than the second between deliveries of most units
constexpr double secondsPerMinute = 60.0;
constexpr char const* none = "-";

std::string rateText(double perSecond) {
    constexpr double leastPerSecond = 0.1; // below, a minute is the better unit
    std::array<char, 32> text{};
    bool const isSlow = perSecond > 0.0 && perSecond < leastPerSecond;
    static_cast<void>(std::snprintf(text.data(), text.size(), isSlow ? "%.1f/m" : "%.1f/s",
                                    isSlow ? perSecond * secondsPerMinute : perSecond));
    return text.data();
}

StatisticsView statisticsOf(WatchedUnit const& unit, UnitValue const& value) {
    auto const& seen = unit.tracker().statistics(value.pos);
    StatisticsView view;
    view.rate = rateText(seen.rate(unit.snapshot().ticks));
    if (!seen.isEmpty()) {
        auto const text = [&](double number) {
            return tav::ValueFormatter::str(value.key, number, " ");
        };
        view.minimum = text(seen.minimum());
        view.maximum = text(seen.maximum());
        view.mean = text(seen.mean());
    }
    return view;
}

std::string ageText(ValueAge const& age, bool isStale) {
    if (age.isNever) {
        return none;
    }
    return (age.isAtLeast ? ">" : "") + tools::shortDurationText(age.ms) + (isStale ? "!" : "");
}

} // namespace

RowView pointView(RowViewInput const& input, UnitPoint const& point) {
    auto const state = input.unit.stateOf(point);
    RowView view{};
    view.isPoint = true;
    view.name = point.name;
    view.shortName = point.name;
    view.type = point.type;
    view.state = shm::stateName(state);
    view.style = tools::stateStyle(state);
    return view;
}

RowView valueView(RowViewInput const& input, UnitValue const& value) {
    auto const& unit = input.unit;
    auto const& record = unit.record(value);
    auto const age = unit.ageOf(value);
    auto const changed = unit.tracker().sinceChange(value.pos, unit.snapshot().ticks);
    RowView view{};
    view.isFresh = changed && *changed < flashMs;
    view.isStale = unit.isStale(value, input.freshness);
    view.isMarked = std::find(input.marks.begin(), input.marks.end(), value.svid) != input.marks.end();
    view.name = value.name;
    view.shortName = value.name;
    view.value = age.isNever ? none : tav::ValueFormatter::str(shm::QelShmMVal(&record));
    view.state = shm::stateName(record.state);
    view.style = tools::stateStyle(record.state);
    view.age = ageText(age, view.isStale);
    view.statistics = statisticsOf(unit, value);
    return view;
}

std::vector<RowView> visibleRows(RowViewInput const& input, RowCursor const& cursor, SortOrder order) {
    std::vector<RowView> views;
    auto const& structure = input.unit.structure();
    for (auto index = cursor.top(); index < cursor.end(); ++index) {
        auto const& row = cursor.rows()[index];
        auto view = row.isPoint ? pointView(input, structure.points()[row.index])
                                : valueView(input, structure.values()[row.index]);
        if (!row.isPoint && order != SortOrder::Tree) {
            auto const& point = structure.points()[structure.values()[row.index].point];
            view.place = point.path;
            view.shortName = point.name + "  " + view.name;
            view.name = point.path + "  " + view.name;
        }
        view.depth = row.depth;
        view.isFoldable = row.isFoldable;
        view.isFolded = row.isFolded;
        view.isSelected = index == cursor.index();
        views.push_back(std::move(view));
    }
    return views;
}

} // namespace qel::watch

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/DetailView.h"

#include "tools/common/TimeText.h"

#include "format/HexText.h"
#include "format/StateName.h"

#include <algorithm>

namespace qel::watch {

namespace {

CurveView curveOf(WatchedUnit const& unit, UnitValue const& value, std::size_t span) {
    return {unit.structure().points()[value.point].name + ' ' + value.name, value.key,
            unit.tracker().history(value.pos, span)};
}

void addMarkedCurves(DetailView& view, RowViewInput const& input, long long selected, std::size_t span) {
    for (auto const svid : input.marks) {
        auto const& values = input.unit.structure().values();
        auto const value = std::find_if(values.begin(), values.end(),
                                        [&](UnitValue const& each) { return each.svid == svid; });
        if (value != values.end() && svid != selected) {
            view.curves.push_back(curveOf(input.unit, *value, span));
        }
    }
}

} // namespace

std::uint64_t DetailView::spanOf(std::size_t columns) const {
    return std::min(std::min(columns, History::length) * bucketMs, seenMs);
}

DetailView detailOf(RowViewInput const& input, Row const* row, std::size_t span) {
    DetailView view{};
    if (row == nullptr) {
        return view;
    }
    auto const& unit = input.unit;
    auto const& structure = unit.structure();
    auto const& point = structure.points()[row->isPoint ? row->index : structure.values()[row->index].point];
    auto const state = unit.stateOf(point);
    view.path = point.path;
    view.svid = shm::svidText(point.svid);
    view.type = point.type;
    view.state = shm::stateName(state);
    view.style = tools::stateStyle(state);
    view.newestBucket = unit.tracker().bucket(unit.snapshot().ticks, span);
    view.bucketMs = unit.tracker().bucketMs(span);
    auto const shown = row->isPoint ? point.firstValue : row->index;
    for (auto index = point.firstValue; index < point.firstValue + point.valueCount; ++index) {
        auto const& value = structure.values()[index];
        view.values.push_back(valueView(input, value));
        if (index == shown) {
            auto const delivered = unit.record(value).at;
            view.values.back().isSelected = true;
            view.graphName = value.name;
            view.delivered = delivered == 0 ? "never" : tools::momentText(delivered);
            view.seenMs = unit.tracker().sinceSeen(value.pos, unit.snapshot().ticks);
            view.curves.push_back(curveOf(unit, value, span));
            addMarkedCurves(view, input, value.svid, span);
        }
    }
    return view;
}

} // namespace qel::watch

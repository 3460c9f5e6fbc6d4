// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/stream/ChangeFinder.h"

#include "tools/qelshm/watch/SameNumber.h"

#include "inspect/naming/ValuePath.h"

#include <utility>

namespace qel::stream {

Report ChangeFinder::update(watch::Snapshot const& snapshot, inspect::RegionStatus const& status) {
    bool const isActive = status.condition == inspect::Condition::Active;
    bool const isConditionNew = condition_ && *condition_ != status.condition;
    condition_ = status.condition;
    bool const isOther = structure_.update(isActive ? snapshot.image : inspect::Image());
    Report report{
        snapshot, status, structure_, isConditionNew, isActive && (isOther || objects_ != snapshot.objects),
        {}};
    if (!isActive) {
        return report;
    }
    objects_ = snapshot.objects;
    auto const& region = snapshot.image.region();
    for (std::uint32_t index = 0; index < structure_.points().size(); ++index) {
        auto const& point = structure_.points()[index];
        if (names_.hasPoint(point.svid)) {
            auto const& slot = region.points[point.pos];
            compare(report, {index, std::nullopt, point.path, "", 0.0, slot.at, slot.state, slot.state},
                    point.svid);
        }
        for (auto value = point.firstValue; value < point.firstValue + point.valueCount; ++value) {
            auto const& which = structure_.values()[value];
            auto const& slot = region.values[which.pos];
            compare(report, {index, value, "", "", slot.value, slot.at, slot.state, slot.state}, which.svid);
        }
    }
    return report;
}

void ChangeFinder::compare(Report& report, Change change, long long svid) {
    Seen const now{change.number, change.state};
    auto const [entry, isNew] = seen_.try_emplace(svid, now);
    auto const before = std::exchange(entry->second, now);
    if (isNew || (before.state == now.state && watch::isSameNumber(before.number, now.number))) {
        return;
    }
    change.before = before.state;
    if (change.value) {
        auto const key = structure_.values()[*change.value].key;
        change.path = inspect::valuePath(structure_.points()[change.point].svid, key);
        change.key = inspect::keyWord(key);
    }
    report.changes.push_back(std::move(change));
}

} // namespace qel::stream

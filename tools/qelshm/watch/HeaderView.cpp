// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/HeaderView.h"

#include "tools/common/TimeText.h"
#include "tools/qelshm/app/RegionInput.h"
#include "tools/qelshm/terminal/AgeText.h"

#include "format/StateName.h"
#include "inspect/naming/LedText.h"

namespace qel::watch {

namespace {

constexpr std::uint64_t reattachedNoteMs = 10000;
constexpr std::uint64_t msPerClockSecond = 1000;

} // namespace

HeaderView headerOf(WatchedUnit const& unit, Freshness const& freshness) {
    auto const& status = unit.status();
    HeaderView view{};
    view.condition = inspect::conditionName(status.condition);
    view.isLive = unit.isLive();
    auto const seen = unit.sinceDelivery();
    auto const silence = seen.value_or(unit.sinceLive());
    if (view.isLive) {
        view.state = shm::stateName(status.globalState);
        view.style = tools::stateStyle(status.globalState);
        view.led = inspect::ledText(status.globalState);
        view.points = status.pointsUsed;
        view.values = status.valuesUsed;
        view.counts = countValues(unit, freshness);
        view.isSilent = !unit.structure().values().empty() &&
                        silence > static_cast<std::uint64_t>(freshness.unit.count());
    }
    auto const duration = tools::shortDurationText(silence);
    if (view.isSilent) {
        view.delivery = std::string("nothing delivered for ") + (seen ? "" : ">") + duration;
    } else {
        view.delivery = seen ? "last delivery " + duration + " ago" : "no delivery yet";
    }
    view.structureChanges = unit.structureChanges();
    view.time = tools::timeText(unit.snapshot().now / msPerClockSecond * msPerClockSecond);
    if (auto const since = unit.sinceReattached(); since && *since < reattachedNoteMs) {
        view.note = "new shared-memory object opened";
    }
    return view;
}

std::vector<std::string> messageOf(WatchedUnit const& unit) {
    if (unit.isLive()) {
        return {};
    }
    return {"Waiting: " + tools::conditionProblem(unit.status()) + '.',
            "The table appears as soon as the region is active."};
}

} // namespace qel::watch

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/AlarmSearch.h"

#include "inspect/naming/StateClass.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace qel::watch {

namespace {

/// Of ascending places: the first one from `begin` on, or the last one before `end`; round the ends.
std::optional<std::size_t> nextOf(std::vector<std::size_t> const& places, std::size_t begin, std::size_t end,
                                  bool isForward) {
    if (places.empty()) {
        return std::nullopt;
    }
    if (isForward) {
        auto const found = std::lower_bound(places.begin(), places.end(), begin);
        return found == places.end() ? places.front() : *found;
    }
    auto const found = std::lower_bound(places.begin(), places.end(), end);
    return found == places.begin() ? places.back() : *(found - 1);
}

} // namespace

bool isAlarm(eStatus_Bits state) {
    return inspect::classOf(state) == inspect::StateClass::Alarm;
}

std::optional<std::uint32_t> alarmInTree(WatchedUnit const& unit, Row const* row, bool isForward) {
    auto const& structure = unit.structure();
    std::vector<std::size_t> alarms;
    for (std::size_t index = 0; index < structure.values().size(); ++index) {
        if (isAlarm(unit.stateOf(structure.values()[index]))) {
            alarms.push_back(index);
        }
    }
    std::size_t begin = 0;
    std::size_t end = 0;
    if (row != nullptr) {
        end = row->isPoint ? structure.points()[row->index].firstValue : row->index;
        begin = row->isPoint ? end : end + 1;
    }
    auto const found = nextOf(alarms, begin, end, isForward);
    return found ? std::optional(static_cast<std::uint32_t>(*found)) : std::nullopt;
}

std::optional<std::uint32_t> alarmInRows(WatchedUnit const& unit, RowCursor const& cursor, bool isForward) {
    std::vector<std::size_t> alarms;
    for (std::size_t index = 0; index < cursor.rows().size(); ++index) {
        auto const& row = cursor.rows()[index];
        if (!row.isPoint && isAlarm(unit.stateOf(unit.structure().values()[row.index]))) {
            alarms.push_back(index);
        }
    }
    auto const found = nextOf(alarms, cursor.index() + 1, cursor.index(), isForward);
    return found ? std::optional(cursor.rows()[*found].index) : std::nullopt;
}

} // namespace qel::watch

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/ValueCounts.h"

#include "inspect/naming/StateClass.h"

namespace qel::watch {

ValueCounts countValues(WatchedUnit const& unit, Freshness const& freshness) {
    ValueCounts counts;
    for (auto const& value : unit.structure().values()) {
        auto const state = unit.stateOf(value);
        auto const kind = inspect::classOf(state);
        counts.lost += state == eStatus_Lost ? 1 : 0;
        counts.alarm += kind == inspect::StateClass::Alarm && state != eStatus_Lost ? 1 : 0;
        counts.warning += kind == inspect::StateClass::Warning ? 1 : 0;
        counts.never += unit.ageOf(value).isNever ? 1 : 0;
        counts.stale += unit.isStale(value, freshness) ? 1 : 0;
    }
    return counts;
}

} // namespace qel::watch

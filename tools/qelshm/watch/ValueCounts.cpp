// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/ValueCounts.h"

namespace qel::watch {

ValueCounts countValues(WatchedUnit const& unit, Freshness const& freshness) {
    ValueCounts counts;
    for (auto const& value : unit.structure().values()) {
        counts.add(unit.stateOf(value));
        counts.never += unit.ageOf(value).isNever ? 1 : 0;
        counts.stale += unit.isStale(value, freshness) ? 1 : 0;
    }
    return counts;
}

} // namespace qel::watch

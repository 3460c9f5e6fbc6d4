// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How many values ask for attention.
#pragma once

#include "tools/qelshm/watch/WatchedUnit.h"

#include "inspect/why/ValueSummary.h"

#include <cstddef>

namespace qel::watch {

/// Numbers of the selected values. Those of StateCounts are told by the state, the others by the deliveries, so a value may
/// count twice. Reentrant.
struct ValueCounts : inspect::StateCounts {
    std::size_t never = 0; ///< never delivered
    std::size_t stale = 0; ///< see WatchedUnit::isStale()
};

/// Counts the values of a live unit; none of another one. Reentrant.
ValueCounts countValues(WatchedUnit const& unit, Freshness const& freshness);

} // namespace qel::watch

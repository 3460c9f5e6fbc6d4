// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How many values ask for attention.
#pragma once

#include "tools/qelshm/watch/WatchedUnit.h"

#include <cstddef>

namespace qel::watch {

/// Numbers of the selected values. The first three are told by the state, the others by the deliveries, so a value may
/// count twice. Reentrant.
struct ValueCounts {
    std::size_t alarm = 0; ///< without the lost ones
    std::size_t warning = 0;
    std::size_t lost = 0;  ///< do not count for the state of the unit
    std::size_t never = 0; ///< never delivered
    std::size_t stale = 0; ///< see WatchedUnit::isStale()
};

/// Counts the values of a live unit; none of another one. Reentrant.
ValueCounts countValues(WatchedUnit const& unit, Freshness const& freshness);

} // namespace qel::watch

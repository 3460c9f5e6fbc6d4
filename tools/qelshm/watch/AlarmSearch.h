// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Values in alarm, from the selected row on.
#pragma once

#include "tools/qelshm/watch/RowCursor.h"
#include "tools/qelshm/watch/WatchedUnit.h"

#include "domain/eStatus_Bits.h"

#include <cstdint>
#include <optional>

namespace qel::watch {

/// Whether a state is an alarm, a loss or a failed update. Reentrant.
bool isAlarm(eStatus_Bits state);

/// Finds the next value in alarm of the whole unit, whatever is folded; behind the last one, the first. Reentrant.
/// @param row       where to begin; null for the beginning
/// @param isForward false for the previous value
/// @return index of the value; none if no value is in alarm
std::optional<std::uint32_t> alarmInTree(WatchedUnit const& unit, Row const* row, bool isForward);

/// Finds the same among the rows of a list, from the selected one on. Reentrant.
std::optional<std::uint32_t> alarmInRows(WatchedUnit const& unit, RowCursor const& cursor, bool isForward);

} // namespace qel::watch

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What kind of state a state is, for people.
#pragma once

#include "domain/eStatus_Bits.h"

#include <cstdint>

namespace qel::inspect {

enum class StateClass : std::uint8_t {
    NoState,  ///< a number that is no state
    NoValue,  ///< nothing was delivered yet
    Plain,    ///< neither good nor bad
    Good,     ///< on, all well
    Identify, ///< on, and being looked for
    Out,      ///< off, disabled or deactivated
    Busy,     ///< an update or a switching under way
    Warning,  ///< a warning, its own or one below
    Alarm,    ///< an alarm, a loss or a failed update, its own or one below
};

/// Every number is allowed. Any thread.
StateClass classOf(eStatus_Bits state);

} // namespace qel::inspect

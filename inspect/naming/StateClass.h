// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Classes of states, for people.
#pragma once

#include "domain/eStatus_Bits.h"

#include <cstdint>
#include <optional>

namespace qel::inspect {

/// What a state means to somebody who looks at a display.
enum class StateClass : std::uint8_t {
    NoState,  ///< a number that is no state
    NoValue,  ///< nothing has been delivered yet
    Plain,    ///< neither good nor bad
    Good,     ///< on, all well
    Identify, ///< on, and identifying itself
    Out,      ///< off, disabled or deactivated
    Busy,     ///< updating or switching
    Warning,  ///< a warning, of the point or below it
    Alarm,    ///< an alarm, a loss or a failed update, of the point or below it
};

/// The class of a state; any number is allowed. Reentrant.
StateClass classOf(eStatus_Bits state);

/// Whether a value in a state has a number to show: not before the first delivery, nor with a number that is no state.
/// Reentrant.
bool hasNumber(eStatus_Bits state);

/// The number of a value, if there is one to show: see hasNumber(); infinity and NaN are none. Reentrant.
std::optional<double> numberIn(eStatus_Bits state, double number);

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Colours of states on a terminal.
#pragma once

#include "domain/eStatus_Bits.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qel::tools {

/// How a text stands out.
enum class Style : std::uint8_t {
    Plain,
    Good,    ///< green: on, all well
    Faint,   ///< off, disabled, or no value yet
    Warning, ///< yellow
    Alarm,   ///< red: alarms, losses, failed updates
    Busy,    ///< magenta: updating or switching
};

/// Reentrant.
/// @return the style of a state; Plain for a number that is no state
Style stateStyle(eStatus_Bits state);

/// Puts a text between the control sequences of a style; Plain has none. Reentrant.
std::string styled(std::string_view text, Style style);

/// Decides whether output is coloured. Thread-bound to the main thread, because it uses the terminal library.
/// @param choice     "always", "never" or "auto": on a terminal that knows colours, unless NO_COLOR is set and not
///                   empty
/// @param descriptor of the output
bool mayColour(std::string_view choice, int descriptor);

} // namespace qel::tools

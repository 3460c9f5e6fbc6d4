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

enum class Style : std::uint8_t {
    Plain,
    Good,    ///< green: on, all well
    Faint,   ///< off, disabled, or nothing delivered yet
    Warning, ///< yellow
    Alarm,   ///< red: alarms, what is lost, failed updates
    Busy,    ///< magenta: an update or a switching under way
};

/// The style of a state; Plain for a number that is no state. Any thread.
Style stateStyle(eStatus_Bits state);

/// The text between the terminal's control sequences for a style; Plain needs none. Any thread.
std::string styled(std::string_view text, Style style);

} // namespace qel::tools

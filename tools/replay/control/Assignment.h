// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Values that a user sets by hand.
#pragma once

#include "tools/replay/csv/InputError.h"

#include "domain/eStatus_Bits.h"
#include "inspect/naming/ValuePattern.h"

#include <string>
#include <string_view>

namespace qel::tools {

/// A number and a state for the values of a pattern. Reentrant.
struct Assignment {
    inspect::ValuePattern pattern;
    double number = 0.0; ///< in the unit in which readers see it, such as kWh
    eStatus_Bits state = eStatus_NoError;
};

/// Reads "NAME=VALUE[,STATE]". The state is No Error by default. Reentrant.
/// @param place of the text, for messages
/// @throws InputError if the text is no assignment, or NAME is not the name of values
Assignment parseAssignment(std::string_view text, InputPlace const& place);

/// Reads the name of points or values whose numbers are released. Reentrant.
/// @throws InputError
inspect::ValuePattern parsePattern(std::string_view text, InputPlace const& place);

/// "4000.0 W, Alarm". Reentrant.
/// @param number in the unit in which readers see it
std::string valueText(unsigned short key, double number, eStatus_Bits state);

} // namespace qel::tools

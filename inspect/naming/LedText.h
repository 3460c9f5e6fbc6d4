// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the status LED shows, in words.
#pragma once

#include "domain/eStatus_Bits.h"

#include <string>

namespace qel::inspect {

/// What the LED shows for a global state: "green", "red", "off", "magenta, blinking", "magenta and red, blinking";
/// "as before" for a state without colours, which does not change the LED. Reentrant.
std::string ledText(eStatus_Bits state);

} // namespace qel::inspect

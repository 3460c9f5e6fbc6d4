// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Names of states.
#pragma once

#include "domain/eStatus_Bits.h"

#include <string>

namespace qel::inspect {

/// The state's name as the data plane prints it, such as "High Alarm".
std::string stateText(eStatus_Bits state);

} // namespace qel::inspect

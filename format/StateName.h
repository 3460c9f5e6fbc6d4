// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Names of the states.
#pragma once

#include "domain/eStatus_Bits.h"

namespace shm {

/// Name of a state, "UNKNOWN STATE" for a number that is none. The text lives as long as the process.
///
/// Threads: reentrant.
char const* stateName(eStatus_Bits state);

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Writes brightness levels to the LED class devices.
#pragma once

#include "states/LedTables.h"

namespace shm {

/// Writes each channel whose level differs from the stored one, or all of them, and stores the new level
/// whether or not the write succeeded. Logs as "update" in "qel.shm.access.states": each level at DEBUG, a
/// file that cannot be opened at WARN, a channel without a file at ERROR.
/// @param stored the level last written to each channel
/// @param force  write unchanged channels as well
void writeLevels(LedTables const& tables, LedLevels& stored, LedLevels const& wanted, bool force);

} // namespace shm

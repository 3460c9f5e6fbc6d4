// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Writes brightness levels to the LED class devices.
#pragma once

#include "states/LedTables.h"

namespace shm {

/// Writes each channel whose level differs from the stored one. Stores the new level even if the write failed.
/// @note Logs as "update" in "qel.shm.access.states": each level at DEBUG, a file that cannot be opened at WARN, a
///       channel without a file at ERROR.
///
/// Threads: reentrant. Only one thread may write to one LED.
/// @param tables files of the channels
/// @param stored level last written to each channel
/// @param wanted the new levels
/// @param force  also write unchanged channels
/// @throws std::bad_alloc when there is no memory for a file's buffer
void writeLevels(LedTables const& tables, LedLevels& stored, LedLevels const& wanted, bool force);

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Tests whether the system bus answers.
#pragma once

namespace shm {

/// Makes a private connection to the system bus, not the one that the process shares, and closes it again. Blocks
/// until the bus has accepted it, at most 2 s.
///
/// Threads: reentrant.
/// @return whether the bus accepted within 2 s; false too when no thread can be created for the time limit
bool busAnswers();

} // namespace shm

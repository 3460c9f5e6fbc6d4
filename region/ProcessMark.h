// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Tells a process from those that are forked from it.
#pragma once

#include <cstdint>

namespace shm {

/// A number that identifies this process among those it is forked from and those that are forked from it. An object notes
/// it when made; if the number differs later, the object was inherited by a forked child.
///
/// The number of the process alone would not do: the system reuses the numbers of ended processes. So forks are counted
/// too, from the first call on.
///
/// Threads: thread-safe.
/// @return never 0
std::uint64_t processMark() noexcept;

} // namespace shm

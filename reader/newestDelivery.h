// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// When a region was delivered to last.
#pragma once

#include "region/QelShmRecords.h"

#include <cstdint>

namespace shm {

/// The newest time of all points and values that can be reached from the root, in ms since 1970 UTC; 0 for never.
/// Slots that a wiping writer has filled do not count. Visits each slot at most once, whatever the links say, in about
/// 4 KiB of stack, and allocates nothing.
///
/// Threads: reads what the writer may be changing.
std::uint64_t newestDelivery(record::Region const& region);

} // namespace shm

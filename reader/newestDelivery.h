// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// When a region received its newest value.
#pragma once

#include "region/QelShmRecords.h"

#include <cstdint>

namespace shm {

/// Finds the newest time of all points and values that can be reached from the root. Wiped slots do not count.
/// Visits each slot at most once, whatever the links contain. Uses about 4 KiB of stack and allocates nothing.
///
/// Threads: reentrant. The writer may change the region meanwhile.
/// @param region the region
/// @return ms since 1970 UTC; 0 for never
std::uint64_t newestDelivery(record::Region const& region);

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The order in which visits and scans show siblings.
#pragma once

#include "region/QelShmRecords.h"

#include <cstdint>

namespace shm {

/// Sorts positions of points in the order of QelShmMPntCmp; points of equal keys keep their order. Positions are nearly
/// always in order already. An id that the writer changes meanwhile may put its point in a wrong place, no more.
///
/// Threads: reentrant.
/// @param points the table
/// @param first  the first position
/// @param last   behind the last position
void sortSiblings(record::QelShmMP const* points, std::uint16_t* first, std::uint16_t const* last);

} // namespace shm

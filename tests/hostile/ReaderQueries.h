// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Asks a reader everything.
#pragma once

#include "tests/hostile/RegionWalk.h"
#include "tests/reader/MappedReader.h"
#include "tests/support/RawRegion.h"

#include <string>

namespace qel::test {

/// Runs every query, visit and printer of a reader over the region that it has mapped, renders each point and value
/// that it meets, and compares what it tells with the bytes. Leaves the reader without a visitor.
/// @param raw  the same region
/// @param walk of it; must end
/// @return what differs first, "" when nothing does
std::string disagreement(MappedReader& reader, RawRegion const& raw, RegionWalk const& walk);

/// Scans a region whose links say anything, circles included.
/// @return whether the scan keeps within its limits
bool scanEnds(MappedReader const& reader);

} // namespace qel::test

/// @file
/// Why a region cannot be read.
#pragma once

#include "inspect/RegionStatus.h"

#include <string>

namespace qel::watch {

/// What is missing until the region can be read, without a full stop: "the region is not active"; "" when it can be
/// read. Any thread.
std::string missingText(inspect::RegionStatus const& status);

} // namespace qel::watch

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Why a region cannot be read.
#pragma once

#include "inspect/image/RegionStatus.h"

#include <string>

namespace qel::watch {

/// What is missing until the region can be read, without a full stop: "the region is not active"; "" when it can be
/// read. Any thread.
std::string missingText(inspect::RegionStatus const& status);

} // namespace qel::watch

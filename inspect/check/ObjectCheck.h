// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Checks who may change the object that holds a region.
#pragma once

#include "inspect/check/Finding.h"
#include "inspect/image/LiveRegion.h"

#include <optional>

#include <sys/types.h>

namespace qel::inspect {

/// Finds signs that somebody else than the rightful writer created the object or may change it: its owner, write
/// permission for group or others, a second name. Permissions and names are checked of a regular file only. Reentrant.
/// @param managerUser the user that owns the hardware manager's bus name, who may own the object beside root; none if
///                    it is unknown
Findings checkObject(RegionObject const& object, std::optional<uid_t> managerUser);

} // namespace qel::inspect

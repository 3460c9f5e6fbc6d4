// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Holds the object against what a rightful writer makes of it.
#pragma once

#include "inspect/check/Finding.h"
#include "inspect/image/RegionObject.h"

#include <optional>

#include <sys/types.h>

namespace qel::inspect {

/// What tells that somebody else than the rightful writer made the object or may change it: its owner, rights to write for
/// its group or others, more than one name. Rights and names are looked at in a regular file alone. Empty for what a
/// writer makes. Any thread.
/// @param managerUser the user that owns the hardware manager's bus name, who may own the object beside root; none when
///                    it is not known
Findings checkObject(RegionObject const& object, std::optional<uid_t> managerUser);

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Who the hardware manager is.
#pragma once

#include <optional>

#include <sys/types.h>

namespace qel::tools {

/// Asks the system bus over a connection of its own. Reentrant.
/// @return the user that owns the hardware manager's name; none when there is no bus, nobody owns the name or the bus
///         does not answer within 2 s
std::optional<uid_t> managerUser();

} // namespace qel::tools

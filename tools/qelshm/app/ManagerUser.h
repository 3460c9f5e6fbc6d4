// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Who the hardware manager is.
#pragma once

#include <optional>

#include <sys/types.h>

namespace qel::tools {

/// The user that owns the hardware manager's name on the system bus. None when there is no bus, when nobody owns the name,
/// and when the bus does not answer within 2 s; none of these is an error. Makes a connection of its own and closes it.
/// Any thread.
std::optional<uid_t> managerUser();

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verbs.
#pragma once

#include "tools/qelshm/app/ICommand.h"

#include <memory>
#include <vector>

namespace qel::tools {

/// Creates the verbs in the order of the help. Reentrant.
std::vector<std::unique_ptr<ICommand>> allCommands();

} // namespace qel::tools

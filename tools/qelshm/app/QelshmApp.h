// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// qelshm from its arguments to its exit status.
#pragma once

#include "tools/qelshm/app/ICommand.h"

#include <iosfwd>
#include <memory>
#include <vector>

namespace qel::tools {

/// Parses the arguments and runs the verb. Help, version and errors go to the standard streams. Thread-bound to the
/// main thread.
/// @param out      receives what the verb prints
/// @param commands the verbs in the order of the help
/// @return the exit status
int runQelshm(int argc, char const* const* argv, std::ostream& out,
              std::vector<std::unique_ptr<ICommand>> const& commands);

} // namespace qel::tools

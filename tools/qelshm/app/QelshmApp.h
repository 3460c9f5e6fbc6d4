// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// qelshm from its arguments to its exit status.
#pragma once

#include <iosfwd>

namespace qel::tools {

/// Reads the arguments and runs the verb. Help, version and errors go to the standard streams.
/// @param out what the verb prints
int runQelshm(int argc, char const* const* argv, std::ostream& out);

} // namespace qel::tools

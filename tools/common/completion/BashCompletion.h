// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Completion for bash.
#pragma once

#include <string>

namespace qel::tools {

struct CommandLineModel;

/// A script for bash that completes a program's verbs, options and arguments. Reentrant.
std::string bashCompletion(CommandLineModel const& model);

} // namespace qel::tools

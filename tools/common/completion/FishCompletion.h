// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Completion for fish.
#pragma once

#include <string>

namespace qel::tools {

struct CommandLineModel;

/// A script for fish that completes a program's verbs, options and arguments. Reentrant.
std::string fishCompletion(CommandLineModel const& model);

} // namespace qel::tools

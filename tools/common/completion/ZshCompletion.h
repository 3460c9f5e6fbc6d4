// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Completion for zsh.
#pragma once

#include <string>

namespace qel::tools {

struct CommandLineModel;

/// A script for zsh that completes a program's verbs, options and arguments. Reentrant.
std::string zshCompletion(CommandLineModel const& model);

} // namespace qel::tools

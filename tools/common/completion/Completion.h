// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Completion scripts for shells, made from the description of a program's command line.
#pragma once

#include "tools/common/completion/CommandLineModel.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qel::tools {

/// The shells that there are scripts for: bash, fish and zsh. Reentrant.
std::vector<std::string> const& completionShells();

/// A script that completes the program's command line in a shell. Reentrant.
/// @param shell one of completionShells()
std::string completionScript(CommandLineModel const& model, std::string const& shell);

/// Adds --completion SHELL, which prints the script and exits. For programs without verbs. The app must outlive parsing.
void addCompletionOption(CLI::App& app);

} // namespace qel::tools

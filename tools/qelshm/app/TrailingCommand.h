// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The command of another program at the end of a command line.
#pragma once

#include <string>
#include <vector>

namespace qel::tools {

/// Takes an option whose value is a command with its arguments: the words behind the command belong to it, whatever they
/// look like. Each of them becomes a value of the option. Reentrant.
/// @param option such as "--on-change"; in "--on-change ls -l" and "--on-change=ls -l", "-l" becomes "--on-change=-l"
/// @return all words
std::vector<std::string> withTrailingCommand(int argc, char const* const* argv, std::string const& option);

} // namespace qel::tools

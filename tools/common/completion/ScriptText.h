// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Pieces of shell scripts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qel::tools {

struct CommandModel;

/// The text with each occurrence of a part replaced. Reentrant.
/// @param part not empty
std::string replaced(std::string_view text, std::string_view part, std::string_view replacement);

/// The text as one word of bash or zsh, in single quotes. Reentrant.
std::string quotedForShell(std::string_view text);

/// The options of a command with two hyphens each: "--json", "--depth". Reentrant.
std::vector<std::string> optionWords(CommandModel const& command);

/// Those of optionWords() that take an argument. Reentrant.
std::vector<std::string> valueOptionWords(CommandModel const& command);

/// The words with a blank in between. Reentrant.
std::string joined(std::vector<std::string> const& words);

} // namespace qel::tools

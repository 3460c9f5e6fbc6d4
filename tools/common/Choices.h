// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Arguments that are one of several words.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class Option;
class Validator;
} // namespace CLI

namespace qel::tools {

enum class LetterCase { Exact, Ignored };

/// Accepts the words, and lets choicesOf() find them.
///
/// Threads: reentrant.
/// @param words each without blanks; errors list them in this order
CLI::Validator oneOf(std::vector<std::string> const& words, LetterCase letterCase = LetterCase::Exact);

/// The words that an option or argument accepts.
///
/// Threads: reentrant.
/// @return empty unless the first check of the option is a oneOf()
std::vector<std::string> choicesOf(CLI::Option& option);

} // namespace qel::tools

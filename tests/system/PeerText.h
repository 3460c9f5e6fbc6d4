// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How sensor ids travel in the lines between a test and its peers.
#pragma once

#include <string>
#include <vector>

namespace qel::test {

/// "0x0100ffffffff0000"
std::string idText(long long svid);

/// Throws std::invalid_argument for text that is no hexadecimal number.
long long idFrom(std::string const& text);

std::vector<std::string> wordsOf(std::string const& line);

} // namespace qel::test

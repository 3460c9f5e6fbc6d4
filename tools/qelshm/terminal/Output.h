// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Printing.
#pragma once

#include <iosfwd>
#include <string_view>

namespace qel::tools {

/// Writes the text and flushes. Throws std::runtime_error when it cannot be written.
void writeOutput(std::ostream& out, std::string_view text);

} // namespace qel::tools

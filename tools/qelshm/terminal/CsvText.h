// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Texts in CSV.
#pragma once

#include <string>
#include <string_view>

namespace qel::tools {

/// A text as a cell of CSV: in quotes if it has commas, quotes or line ends, as in RFC 4180. Reentrant.
std::string csvText(std::string_view text);

} // namespace qel::tools

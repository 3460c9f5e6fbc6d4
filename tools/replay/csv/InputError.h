// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Reports input that cannot be used, and where it is. All classes and functions are reentrant.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qel::tools {

/// A place in an input file, or the name of an option. Line 0 and an empty column are not reported.
struct InputPlace {
    std::string_view file;
    std::size_t line = 0;         ///< from 1
    std::string_view column = {}; ///< name of the column or of the setting
};

/// One line for the user: "FILE:LINE: COLUMN: what is wrong; expected what would be right".
class InputError : public std::runtime_error {
public:
    InputError(InputPlace const& place, std::string_view problem, std::string_view expected);
};

/// The text in double quotes, shortened to 40 bytes, with every byte that is not printable ASCII as \xHH.
std::string inQuotes(std::string_view text);

} // namespace qel::tools

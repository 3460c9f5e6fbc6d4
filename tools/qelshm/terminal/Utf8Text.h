// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// UTF-8 text by characters instead of bytes. All functions are reentrant.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qel::tools {

/// @return the number of characters of a UTF-8 text
std::size_t widthOf(std::string_view text);

/// Fits a UTF-8 text to a width.
/// @return exactly that many characters: padded with blanks on the right, or cut off and ended with '~'
std::string fitted(std::string_view text, std::size_t width);

/// Shortens a UTF-8 text in its middle, so that both its ends stay: "Acti~ower".
/// @return at most that many characters; not padded
std::string shortened(std::string_view text, std::size_t width);

/// Searches a text; upper and lower case of ASCII letters are the same, whatever the locale.
bool containsIgnoringCase(std::string_view text, std::string_view part);

/// Replaces each character that is not ASCII by '?', for terminals that show no others.
std::string asciiOnly(std::string_view text);

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Text as a terminal shows it. All functions: any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qel::watch {

/// How many characters the UTF-8 text has.
std::size_t widthOf(std::string_view text);

/// The UTF-8 text in exactly so many characters: filled with blanks on the right, or cut and ended with a '~'.
std::string fitted(std::string_view text, std::size_t width);

/// ASCII letters in lower case, all else as it is.
std::string lowerCase(std::string_view text);

/// Each character that is not ASCII replaced by a '?', for terminals that know no others.
std::string asciiOnly(std::string_view text);

/// A duration in a few characters: "0s", "59s", "59m", "23h", "12d"; rounded down.
/// @param ms milliseconds
std::string durationText(std::uint64_t ms);

} // namespace qel::watch

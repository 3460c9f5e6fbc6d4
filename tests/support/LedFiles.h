// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The status LED's files, as the test's surroundings provide them.
#pragma once

#include <string>

namespace qel::test {

/// Path of a channel's LED class device: "red", "green" or "blue".
std::string ledDevice(std::string const& color);
std::string ledFile(std::string const& color);

/// Content of a file, "(none)" if it cannot be read.
std::string contentOf(std::string const& path);
void writeFile(std::string const& path, std::string const& content);

/// The three files in the order red, green, blue, separated by "/".
std::string ledContents();

/// Writes a mark into all three files, so that a write shows even if it repeats a level.
void markLedFiles();

/// Recreates devices and files, empty.
void restoreLedFiles();

} // namespace qel::test

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a terminal can do, by its own description. All functions are thread-bound to the main thread, because they use
/// the terminal library.
#pragma once

namespace qel::tools {

/// Whether a terminal knows at least eight colours; false if it has no description.
/// @param descriptor of the terminal
bool knowsColours(int descriptor);

/// Whether a program can write anywhere on the screen of a terminal; false if it has no description.
/// @param descriptor of the terminal
bool canAddressCursor(int descriptor);

} // namespace qel::tools

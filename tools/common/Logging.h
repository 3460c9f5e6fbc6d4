// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Sends the library's log to standard error.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace qel::tools {

/// Adds --log-level to a program's options. Without it the library's log is discarded.
/// @param level receives the name of the level in lower case, empty if the option is not given; must outlive app
void addLogOption(CLI::App& app, std::string& level);

/// Sends the log from this level up to standard error; does nothing for an empty level.
void logToStandardError(std::string const& level);

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Reads the arguments of a program.
#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace qel::tools {

/// Adds --version, which tells the program's name and version.
void addVersionOption(CLI::App& app);

/// Reads the arguments into the options of the app. Help and version go to standard output, wrong usage as
/// one line to standard error.
/// @return the status to exit with at once, nothing when the program shall go on
std::optional<int> parseCommandLine(CLI::App& app, int argc, char const* const* argv);

/// One line on standard error, "NAME: message"; what could harm a terminal is escaped.
void tellError(CLI::App const& app, std::string const& message);

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Reads the arguments of a program.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace qel::tools {

/// Adds --version, which prints the program's name and version.
void addVersionOption(CLI::App& app);

/// Reads the arguments into the options of the app. Help and version go to standard output; wrong usage is reported in
/// one line on standard error.
/// @param onWrongUsage called with what is wrong, after it was reported
/// @return the status to exit with, nothing if the program shall continue
std::optional<int> parseCommandLine(CLI::App& app, int argc, char const* const* argv,
                                    std::function<void(std::string const&)> const& onWrongUsage = {});

/// Writes one line to standard error, "NAME: message", with control characters escaped.
void tellError(CLI::App const& app, std::string const& message);

} // namespace qel::tools

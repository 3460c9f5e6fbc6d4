// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What all verbs of qelshm have in common on the command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace qel::tools {

struct QelshmOptions {
    std::string image;            ///< file to look at in place of the live object, "" for none
    std::optional<unsigned> wait; ///< s
    bool isJson = false;
    std::string color = "auto";       ///< "auto", "always" or "never"
    std::optional<std::uint64_t> now; ///< ms since 1970 UTC that ages count from, in place of the clock
};

/// The options that not every verb takes.
struct OptionalOptions {
    CLI::Option* image;
    CLI::Option* wait;
    CLI::Option* json;
};

/// Describes the program and these options to the app.
/// @param options receives the arguments; must outlive app
OptionalOptions defineQelshmOptions(CLI::App& app, QelshmOptions& options);

/// Whether standard output shall be coloured: what --color says, and by itself only on a terminal that can, unless
/// NO_COLOR is set.
bool hasColor(QelshmOptions const& options);

} // namespace qel::tools

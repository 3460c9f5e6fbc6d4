// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The options of "watch" that are for programs.
#pragma once

#include "tools/qelshm/app/ICommand.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qel::tools {

/// --csv, --on-change and --syslog, and the streams that they and --json select; lines of text without any of them.
///
/// Threads: thread-bound to the main thread.
class WatchStreams {
public:
    /// What "watch" has read for itself.
    struct Settings {
        std::vector<std::string> const& names;
        std::optional<std::uint64_t> count;
        std::chrono::milliseconds interval;
        std::chrono::seconds wait;
    };

    /// Adds the options to the verb. The object must outlive it.
    void define(CLI::App& verb, OptionalOptions const& optional);

    /// Whether one of them, or --json, is given.
    bool isWanted(CommandContext const& context) const;

    /// @return the exit status
    /// @throws std::runtime_error, see stream::runStream()
    int run(CommandContext const& context, Settings const& settings) const;

private:
    bool isCsv_ = false;
    bool isSyslog_ = false;
    std::vector<std::string> command_;
};

} // namespace qel::tools

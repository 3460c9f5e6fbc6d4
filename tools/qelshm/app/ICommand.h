// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A verb of qelshm.
#pragma once

#include "tools/qelshm/app/QelshmOptions.h"

#include <functional>
#include <iosfwd>
#include <string>

namespace CLI {
class App;
}

namespace qel::tools {

/// What a verb works with. Reentrant.
struct CommandContext {
    QelshmOptions const& options;
    std::ostream& out;
    bool isColoured;
    std::function<void(std::string const&)> tell; ///< prints a line on standard error
};

/// A verb: its options and what it does.
///
/// Threads: thread-bound to the main thread.
class ICommand {
public:
    ICommand() = default;
    ICommand(ICommand const&) = delete;
    ICommand& operator=(ICommand const&) = delete;
    virtual ~ICommand() = default;

    /// Adds the verb with its options to the app. The command receives their arguments and must outlive the app.
    /// @return the verb
    virtual CLI::App& define(CLI::App& app, OptionalOptions const& optional) = 0;

    /// Runs the verb with the arguments that were parsed.
    /// @return the program's exit status
    /// @throws std::exception with a line for the user; the exit status is 1 then
    virtual int run(CommandContext const& context) = 0;
};

} // namespace qel::tools

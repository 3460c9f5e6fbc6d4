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

/// What a verb works with.
struct CommandContext {
    QelshmOptions const& options;
    std::ostream& out;
    bool hasColor;
    std::function<void(std::string const&)> tell; ///< a line on standard error
};

class ICommand {
public:
    ICommand() = default;
    ICommand(ICommand const&) = delete;
    ICommand& operator=(ICommand const&) = delete;
    virtual ~ICommand() = default;

    /// Adds the verb with its own arguments; they are kept in the command, which must outlive the app.
    virtual CLI::App& define(CLI::App& app, OptionalOptions const& optional) = 0;

    /// @return the program's exit status
    /// Throws std::exception with a line for the user; the exit status is 1 then.
    virtual int run(CommandContext const& context) = 0;
};

} // namespace qel::tools

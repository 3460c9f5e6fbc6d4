// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "completion".
#pragma once

#include "tools/qelshm/app/ICommand.h"

#include <string>

namespace qel::tools {

/// Prints a script that completes verbs, options, files, keys and the points of the unit in a shell.
///
/// Threads: thread-bound to the main thread.
class CompletionCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;
    int run(CommandContext const& context) override;

private:
    CLI::App* app_ = nullptr;
    std::string shell_;
};

} // namespace qel::tools

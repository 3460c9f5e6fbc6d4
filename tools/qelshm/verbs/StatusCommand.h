// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "status".
#pragma once

#include "tools/qelshm/app/ICommand.h"

#include <optional>

namespace qel::tools {

/// Prints the region's condition, owner, use and global state, and findings about the owner and mode of a live object.
///
/// Threads: thread-bound to the main thread.
class StatusCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;
    int run(CommandContext const& context) override;

private:
    std::optional<double> maxAge_; ///< s
};

} // namespace qel::tools

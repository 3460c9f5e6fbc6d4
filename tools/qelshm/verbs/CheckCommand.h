// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "check".
#pragma once

#include "tools/qelshm/app/ICommand.h"

namespace qel::tools {

/// Checks the region against the layout and the writer's rules, and a live object for its owner, mode and names.
/// Ignores findings that a second copy of the live region does not confirm: they were writes under way.
///
/// Threads: thread-bound to the main thread.
class CheckCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

    /// @return 1 when there is damage
    /// @throws NothingThereError
    int run(CommandContext const& context) override;
};

} // namespace qel::tools

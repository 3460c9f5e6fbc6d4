// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "check".
#pragma once

#include "tools/qelshm/app/ICommand.h"

namespace qel::tools {

/// Holds the region against everything that the layout and the writer promise, and a live object against what a rightful
/// writer makes of it. What a live region shows once only, because
/// it was being written, does not count.
class CheckCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

    /// Status 1 when something is damaged. Throws NothingThereError.
    int run(CommandContext const& context) override;
};

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "diff".
#pragma once

#include "tools/qelshm/app/ICommand.h"

#include <string>

namespace qel::tools {

/// Compares two images, or an image and the live object.
///
/// Threads: thread-bound to the main thread.
class DiffCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

    /// @return 1 when there are differences
    /// @throws NothingThereError, inspect::ImageFileError
    int run(CommandContext const& context) override;

private:
    std::string before_;
    std::string after_;
};

} // namespace qel::tools

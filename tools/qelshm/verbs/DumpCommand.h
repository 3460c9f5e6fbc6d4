// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "dump".
#pragma once

#include "tools/qelshm/app/ICommand.h"

#include <string>

namespace qel::tools {

/// Saves the region's bytes to a file or standard output as they are.
///
/// Threads: thread-bound to the main thread.
class DumpCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

    /// @throws NothingThereError, inspect::ImageFileError
    int run(CommandContext const& context) override;

private:
    std::string file_;
};

} // namespace qel::tools

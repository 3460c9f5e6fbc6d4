// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "dump".
#pragma once

#include "tools/qelshm/app/ICommand.h"

#include <string>

namespace qel::tools {

/// Writes the region's bytes to a file exactly as they are, whatever they say.
class DumpCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

    /// Throws NothingThereError, inspect::ImageFileError.
    int run(CommandContext const& context) override;

private:
    std::string file_;
};

} // namespace qel::tools

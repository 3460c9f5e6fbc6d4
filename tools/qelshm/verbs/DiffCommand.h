// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "diff".
#pragma once

#include "tools/qelshm/app/ICommand.h"

#include <string>

namespace qel::tools {

/// What differs between two images, or between one and the live object.
class DiffCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

    /// Status 1 when there are differences. Throws NothingThereError, inspect::ImageFileError.
    int run(CommandContext const& context) override;

private:
    std::string before_;
    std::string after_;
};

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "hz".
#pragma once

#include "tools/qelshm/app/ICommand.h"

#include <string>
#include <vector>

namespace qel::tools {

/// Measures how often the values of the live region are updated.
///
/// Threads: thread-bound to the main thread.
class HzCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

    /// @throws NothingThereError, inspect::NotFoundError, inspect::PatternError
    int run(CommandContext const& context) override;

private:
    std::vector<std::string> names_;
    double interval_ = 0.004; ///< s between two samples
    double duration_ = 5;     ///< s
};

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "status".
#pragma once

#include "tools/qelshm/app/ICommand.h"

#include <optional>

namespace qel::tools {

/// The region's condition in a few lines: what it is, whose it is, how full it is and what its global state says; and
/// what tells that somebody else than its writer made it or may change it.
class StatusCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;
    int run(CommandContext const& context) override;

private:
    std::optional<double> maxAge_; ///< s
};

} // namespace qel::tools

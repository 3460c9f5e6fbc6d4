// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "get".
#pragma once

#include "tools/qelshm/verbs/ImageCommand.h"

#include <string>

namespace qel::tools {

/// One point with its values, or one value.
class GetCommand : public ImageCommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

protected:
    /// Throws inspect::NotFoundError.
    int show(RegionView const& view, CommandContext const& context) override;

private:
    std::string point_;
    std::string key_;
};

} // namespace qel::tools

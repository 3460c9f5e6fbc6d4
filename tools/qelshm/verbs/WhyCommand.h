// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "why".
#pragma once

#include "tools/qelshm/verbs/ImageCommand.h"

#include <string>

namespace qel::tools {

/// Why the unit or a point is not "On": the causes, each with its way up.
class WhyCommand : public ImageCommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

protected:
    /// Status 1 when there are causes. Throws inspect::NotFoundError.
    int show(RegionView const& view, CommandContext const& context) override;

private:
    std::string point_; ///< "" for the whole unit
};

} // namespace qel::tools

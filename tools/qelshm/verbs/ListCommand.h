// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "list".
#pragma once

#include "tools/qelshm/verbs/ImageCommand.h"

namespace qel::tools {

/// Every point with its values, in the order of the tree and without indentation by depth.
class ListCommand : public ImageCommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

protected:
    int show(RegionView const& view, CommandContext const& context) override;
};

} // namespace qel::tools

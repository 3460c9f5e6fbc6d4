// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A verb that shows one region.
#pragma once

#include "tools/qelshm/app/ICommand.h"
#include "tools/qelshm/app/RegionInput.h"

#include "inspect/image/PointTree.h"

#include <string>
#include <vector>

namespace qel::tools {

/// One region, its tree, and what is wrong with both.
struct RegionView {
    RegionInput input;
    inspect::PointTree tree;
    std::vector<std::string> warnings;
};

/// The region that the options name, after the wait that they ask for. Throws inspect::ImageFileError.
RegionInput openInput(CommandContext const& context);

/// Opens the input, tells its warnings and shows it.
class ImageCommand : public ICommand {
public:
    /// The exit status is 1 when there were warnings. Throws NothingThereError.
    int run(CommandContext const& context) final;

protected:
    /// @return the exit status
    virtual int show(RegionView const& view, CommandContext const& context) = 0;
};

} // namespace qel::tools

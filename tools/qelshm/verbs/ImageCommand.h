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

/// A region, its tree, and what is wrong with them. Reentrant.
struct RegionView {
    RegionInput input;
    inspect::PointTree tree;
    std::vector<std::string> warnings;
};

/// Opens the input, prints its warnings and shows it.
///
/// Threads: thread-bound to the main thread.
class ImageCommand : public ICommand {
public:
    /// @return at least 1 when there are warnings
    /// @throws NothingThereError
    int run(CommandContext const& context) final;

protected:
    /// @return the exit status
    virtual int show(RegionView const& view, CommandContext const& context) = 0;
};

} // namespace qel::tools

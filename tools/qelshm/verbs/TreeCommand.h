// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "tree".
#pragma once

#include "tools/qelshm/verbs/ImageCommand.h"

#include <cstdint>
#include <limits>

namespace qel::tools {

/// Prints the points as a tree, optionally with their values, or only their paths.
///
/// Threads: thread-bound to the main thread.
class TreeCommand : public ImageCommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

protected:
    int show(RegionView const& view, CommandContext const& context) override;

private:
    void printText(RegionView const& view, CommandContext const& context) const;
    void printDocument(RegionView const& view, CommandContext const& context) const;

    bool hasValues_ = false;
    bool arePaths_ = false;
    std::uint32_t depth_ = std::numeric_limits<std::uint32_t>::max();
};

} // namespace qel::tools

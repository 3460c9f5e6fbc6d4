// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "tree".
#pragma once

#include "tools/qelshm/verbs/ImageCommand.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace qel::tools {

/// Prints all points or those that are named as a tree, optionally with their values, or only their paths.
///
/// Threads: thread-bound to the main thread.
class TreeCommand : public ImageCommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

protected:
    /// @throws inspect::NotFoundError, inspect::PatternError
    int show(RegionView const& view, CommandContext const& context) override;

private:
    void printText(RegionView const& view, CommandContext const& context) const;
    void printDocument(RegionView const& view, CommandContext const& context) const;

    std::vector<std::string> names_;
    bool hasValues_ = false;
    bool arePaths_ = false;
    std::uint32_t depth_ = std::numeric_limits<std::uint32_t>::max();
};

} // namespace qel::tools

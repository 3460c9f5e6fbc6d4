// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verbs "list" and "get".
#pragma once

#include "tools/qelshm/verbs/ImageCommand.h"

#include <cstdint>
#include <string>

namespace qel::tools {

/// Prints points with their values: every point in the order of the tree, one point, or one value.
///
/// Threads: thread-bound to the main thread.
class ListCommand : public ImageCommand {
public:
    /// Which verb it is.
    enum class Verb : std::uint8_t {
        List, ///< every point
        Get,  ///< what the arguments name
    };

    explicit ListCommand(Verb verb) : verb_(verb) {}

    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

protected:
    /// @throws inspect::NotFoundError
    int show(RegionView const& view, CommandContext const& context) override;

private:
    void list(RegionView const& view, CommandContext const& context) const;
    void get(RegionView const& view, CommandContext const& context) const;

    Verb verb_;
    std::string point_;
    std::string key_;
};

} // namespace qel::tools

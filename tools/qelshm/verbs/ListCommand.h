// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verbs "list" and "get".
#pragma once

#include "tools/qelshm/verbs/ImageCommand.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qel::tools {

/// Prints points with their values in the order of the tree: every point, or what names select.
///
/// Threads: thread-bound to the main thread.
class ListCommand : public ImageCommand {
public:
    /// Which verb it is.
    enum class Verb : std::uint8_t {
        List, ///< every point, or those that are named
        Get,  ///< what one name selects
    };

    explicit ListCommand(Verb verb) : verb_(verb) {}

    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

protected:
    /// @throws inspect::NotFoundError, inspect::PatternError
    int show(RegionView const& view, CommandContext const& context) override;

private:
    void list(RegionView const& view, CommandContext const& context) const;
    void get(RegionView const& view, CommandContext const& context) const;

    std::string nameToGet() const;

    Verb verb_;
    std::vector<std::string> names_; ///< to list
    std::string name_;               ///< to get
    std::string key_;
};

} // namespace qel::tools

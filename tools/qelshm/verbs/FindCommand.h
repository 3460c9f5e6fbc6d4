// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "find".
#pragma once

#include "tools/qelshm/verbs/ImageCommand.h"

#include <string>

namespace qel::tools {

/// Searches the path, id, type and state of points and the id, key name and state of values for a text, or selects points
/// and values by a name with wildcards or a key. Upper and lower case are the same. May keep only old values.
///
/// Threads: thread-bound to the main thread.
class FindCommand : public ImageCommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

protected:
    /// @return 1 when there is no match
    /// @throws inspect::NotFoundError, inspect::PatternError
    int show(RegionView const& view, CommandContext const& context) override;

private:
    std::string text_;
    std::string olderThan_; ///< a duration; "" for any age
};

} // namespace qel::tools

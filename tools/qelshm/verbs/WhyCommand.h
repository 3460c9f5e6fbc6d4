// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "why".
#pragma once

#include "tools/qelshm/verbs/ImageCommand.h"

#include <string>

namespace qel::tools {

/// Explains why the unit or a point is not "On": the causes and how each propagates.
///
/// Threads: thread-bound to the main thread.
class WhyCommand : public ImageCommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

protected:
    /// @return 1 when there are causes
    /// @throws inspect::NotFoundError
    int show(RegionView const& view, CommandContext const& context) override;

private:
    std::string point_; ///< "" for the whole unit
};

} // namespace qel::tools

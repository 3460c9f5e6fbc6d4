// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "watch".
#pragma once

#include "tools/qelshm/app/ICommand.h"
#include "tools/qelshm/verbs/WatchStreams.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qel::tools {

/// Shows values as they change until the user stops it.
///
/// Threads: thread-bound to the main thread.
class WatchCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

    /// @throws std::runtime_error, see watch::showTable() and stream::runStream()
    int run(CommandContext const& context) override;

private:
    std::vector<std::string> names_;
    std::optional<std::uint64_t> count_;
    double interval_ = 0.25;       ///< s between two snapshots
    std::optional<double> maxAge_; ///< s
    WatchStreams streams_;
};

} // namespace qel::tools

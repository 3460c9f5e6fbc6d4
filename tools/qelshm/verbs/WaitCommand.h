// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "wait".
#pragma once

#include "tools/qelshm/app/ICommand.h"
#include "tools/qelshm/app/RegionInput.h"
#include "tools/qelshm/verbs/WaitCondition.h"

#include "inspect/image/StructureFingerprint.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace qel::tools {

/// Waits until one of some conditions is met by the live region.
///
/// Threads: thread-bound to the main thread.
class WaitCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

    /// @return 1 when the time is over
    int run(CommandContext const& context) override;

private:
    /// A condition and what meets it.
    struct Event {
        std::string condition;
        std::optional<WaitCondition::Met> met; ///< none for a condition on the region
        std::string line;                      ///< what to print of the region
    };

    /// The first look at an active region tells of names of nothing.
    std::optional<Event> look(std::vector<WaitCondition> const& conditions, RegionInput const& input,
                              CommandContext const& context);
    static void print(std::optional<Event> const& event, RegionInput const& input,
                      std::chrono::milliseconds elapsed, CommandContext const& context);

    std::vector<std::string> conditions_;
    std::string timeout_ = "60";
    double interval_ = 0.25;                              ///< s between two looks
    std::optional<inspect::StructureFingerprint> before_; ///< of the first active region
};

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Waiting for an active region.
#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace qel::tools {

/// Tells the user what a wait is for, and knows when it has lasted long enough. It learns of the region from whoever
/// reads it.
///
/// Threads: reentrant.
class RegionWait {
public:
    /// Time between two reads of a region that is not there yet.
    static constexpr std::chrono::milliseconds interval{50};

    /// Begins to count.
    /// @param longest how long the region may be missing before it was there for the first time
    /// @param tell    called with a line for each problem that lasts longer than a moment
    RegionWait(std::chrono::seconds longest, std::function<void(std::string const&)> tell);

    /// Takes note of a read of the region.
    /// @param problem see conditionProblem()
    void note(std::string const& problem);

    /// @return whether the region was missing at the last read
    bool isMissing() const { return isMissing_; }

    /// @return whether the time is over and the region was never there
    bool isOver() const { return isOver_; }

private:
    using Clock = std::chrono::steady_clock;

    std::chrono::seconds longest_;
    std::function<void(std::string const&)> tell_;
    Clock::time_point since_ = Clock::now(); ///< start, or the last time the region was there
    std::string told_;
    bool wasThere_ = false;
    bool isMissing_ = true;
    bool isOver_ = false;
};

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The times that replayed values carry.
#pragma once

#include <cstdint>
#include <functional>

namespace qel::tools {

/// A moment of a replay. Reentrant.
struct ReplayMoment {
    std::uint64_t recorded = 0; ///< ms since 1970 UTC
    std::uint64_t due = 0;      ///< when the step with it is due, ms after the start in recorded time
};

/// Gives values the time of the recording, or moves it to the present: then the replay begins now, and what is recorded
/// N seconds later is stamped N seconds later, divided by the speed.
///
/// Threads: reentrant.
class Stamps {
public:
    /// @return ms since 1970 UTC
    using Clock = std::function<std::uint64_t()>;

    /// The recorded times.
    Stamps() = default;

    /// Times of the present. The first call of begin() is the present.
    /// @param speed recorded seconds per second; 0 stamps each step with the moment at which it is taken
    static Stamps present(double speed, Clock now = systemNow);

    /// Whether the times are moved to the present.
    bool isPresent() const { return static_cast<bool>(now_); }

    /// The replay begins.
    void begin();

    /// The stamp of a step's values, ms since 1970 UTC.
    std::uint64_t of(ReplayMoment const& step) const { return of(step.recorded, step); }

    /// The stamp of a time that a step knows, such as an earlier delivery in a sample. Times before the start keep their
    /// distance from it.
    std::uint64_t of(std::uint64_t recorded, ReplayMoment const& step) const;

private:
    static std::uint64_t systemNow();

    double speed_ = 1.0;
    Clock now_; // empty: recorded times
    std::uint64_t start_ = 0;
};

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How often values are updated.
#pragma once

#include "inspect/image/Image.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace qel::inspect {

/// What was seen of one value's updates.
struct UpdateRate {
    long long svid;                    ///< of the value, its key included
    std::uint64_t count;               ///< updates seen
    std::uint64_t lastAt;              ///< time of the newest delivery, ms since 1970 UTC; 0 for never
    std::chrono::nanoseconds observed; ///< from the first image with the value to the last one
    std::optional<double> perSecond;   ///< count over that time; none while it is zero
    std::optional<std::chrono::nanoseconds> shortest; ///< gap between two updates seen; none below two
    std::optional<std::chrono::nanoseconds> longest;
    bool isPresent; ///< in the last image
};

/// Counts updates from successive images. An update shows as a change of the value's time, state or number between
/// one image and the next. So counts are exact as long as images are taken more often than each value is updated; if
/// not, updates in between are missed and count and rate are lower bounds, as they are when an update repeats time,
/// state and number. Gaps are taken from the images' times and are as fine as those.
///
/// The rate is the count over the time observed, so it is the more accurate the more updates that time holds.
///
/// An update that is only half stored when an image is taken (the time new, the number old) counts once.
///
/// Threads: not shared without care.
class UpdateRates {
public:
    /// Takes the next image.
    /// @param time when it was taken, by a clock that never goes back
    /// Throws std::invalid_argument when the time lies before that of the image before.
    void add(Image const& image, std::chrono::steady_clock::time_point time);

    /// All values that can be reached in any of the images, in the order in which they were first met: that of the
    /// tree, then those that came later. Of several values of one id only the first counts.
    std::vector<UpdateRate> rates() const;

private:
    using Time = std::chrono::steady_clock::time_point;

    struct Track {
        long long svid = 0;
        shm::record::QelShmMVal last{}; ///< as in the newest image that had it
        Time first;
        Time newest;
        std::uint64_t newestImage = 0;
        bool isTimeNew = false; ///< the newest image brought another time of delivery
        std::uint64_t count = 0;
        std::optional<Time> lastUpdate;
        std::optional<std::chrono::nanoseconds> shortest;
        std::optional<std::chrono::nanoseconds> longest;
    };

    void take(long long svid, shm::record::QelShmMVal const& value, Time time);

    std::vector<Track> tracks_;
    std::unordered_map<long long, std::size_t> trackOf_;
    std::uint64_t images_ = 0;
    Time newest_;
};

} // namespace qel::inspect

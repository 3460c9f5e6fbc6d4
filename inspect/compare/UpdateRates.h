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

/// The updates of one value that were seen.
struct UpdateRate {
    long long svid;                    ///< of the value, its key included
    std::uint64_t count;               ///< updates seen
    std::uint64_t lastAt;              ///< time of the newest delivery, ms since 1970 UTC; 0 for never
    std::uint64_t looks;               ///< images with the value after the first one
    std::chrono::nanoseconds observed; ///< from the first image with the value to the last one
    std::optional<double> perSecond;   ///< count over that time; none if it is zero
    std::optional<std::chrono::nanoseconds>
        shortest; ///< gap between two updates seen; none for fewer than two
    std::optional<std::chrono::nanoseconds> longest; ///< likewise
    bool isPresent;                                  ///< in the last image
};

/// Whether more than half of the looks saw an update: two may then have come between looks, and the true rate may be
/// higher. Reentrant.
bool mayBeHigher(UpdateRate const& rate);

/// Counts updates in successive images. An update is a change of a value's time, state or number from one image to the
/// next. If images are taken more often than a value is updated, the count is exact. If not, updates are missed, so
/// count and rate are lower bounds; so they are if an update repeats time, state and number. The rate becomes more
/// accurate the more updates the time observed holds. Gaps are as fine as the times of the images.
///
/// An update that is half stored when an image is taken (new time, old number) counts once.
///
/// Threads: reentrant.
class UpdateRates {
public:
    /// Takes the next image.
    /// @param time when it was taken, by a clock that never goes back
    /// @throws std::invalid_argument if the time is before that of the previous image
    void add(Image const& image, std::chrono::steady_clock::time_point time);

    /// The rates of all values in any of the images: first those of the first image in the order of its tree, then
    /// later ones as they came. If several values have one id, only the first counts.
    std::vector<UpdateRate> rates() const;

private:
    using Time = std::chrono::steady_clock::time_point;

    struct Track {
        long long svid = 0;
        shm::record::QelShmMVal last{}; ///< as in the newest image with the value
        Time first;
        Time newest;
        std::uint64_t newestImage = 0; ///< number of the newest image with the value
        bool isTimeNew = false;        ///< the newest image changed the time of delivery
        std::uint64_t count = 0;
        std::uint64_t looks = 0;
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

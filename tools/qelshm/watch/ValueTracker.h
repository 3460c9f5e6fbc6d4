// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Changes of values from image to image.
#pragma once

#include "tools/qelshm/watch/Histories.h"
#include "tools/qelshm/watch/UnitStructure.h"
#include "tools/qelshm/watch/ValueStatistics.h"

#include "domain/eStatus_Bits.h"
#include "inspect/image/Image.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace qel::watch {

/// A value whose number or state differs from the previous image. Reentrant.
struct ValueChange {
    std::uint32_t value; ///< index into UnitStructure::values()
    eStatus_Bits before;
};

/// Remembers the values of the previous image. A value that is new or comes back counts as unchanged and never
/// delivered.
///
/// Memory: 144 bytes a slot, 1.3 MB; with histories another 3.3 kB for each value, 29 MB for 8800 of them.
///
/// Threads: reentrant.
class ValueTracker {
public:
    /// @param bucketMs how long a bucket of the histories lasts, ms; 0 to keep none
    explicit ValueTracker(std::uint64_t bucketMs) : bucketMs_(bucketMs), tracks_(shm::MV_COUNT) {}

    /// Compares an image with the previous one.
    /// @param structure of this image
    /// @param ticks     ms of a clock that is never set back
    /// @return the values that have changed
    std::vector<ValueChange> update(UnitStructure const& structure, inspect::Image const& image,
                                    std::uint64_t ticks);

    /// @param pos slot of a value, as below
    /// @return milliseconds since number or state changed; none if no change was seen
    std::optional<std::uint64_t> sinceChange(std::uint32_t pos, std::uint64_t ticks) const;

    /// @return milliseconds since a delivery, even of the same number; none if no delivery was seen
    std::optional<std::uint64_t> sinceDelivery(std::uint32_t pos, std::uint64_t ticks) const;

    /// @return milliseconds since the value was there for the first time, or came back
    std::uint64_t sinceSeen(std::uint32_t pos, std::uint64_t ticks) const {
        return ticks - tracks_.at(pos).seen;
    }

    /// @return what was seen of the value since then, or since the statistics were restarted
    ValueStatistics const& statistics(std::uint32_t pos) const { return tracks_.at(pos).statistics; }

    /// Begins the statistics of all values anew.
    void restartStatistics(std::uint64_t ticks);

    /// Takes all values of the next image as new ones: they are another writer's.
    void forget() { isForgotten_ = true; }

    /// @param span index into historyFactors
    /// @return the value's history, valid until the next update; null if none is kept
    History const* history(std::uint32_t pos, std::size_t span = 0) const {
        auto const& histories = tracks_.at(pos).histories;
        return histories.empty() ? nullptr : &histories.front().at(span);
    }

    /// @return number of the bucket at a moment
    std::uint64_t bucket(std::uint64_t ticks, std::size_t span = 0) const {
        return bucketMs_ == 0 ? 0 : ticks / bucketMs_ / historyFactors.at(span);
    }
    /// @return how long a bucket lasts, ms; 0 if no history is kept
    std::uint64_t bucketMs(std::size_t span = 0) const { return bucketMs_ * historyFactors.at(span); }

private:
    struct Track {
        long long svid = 0;
        double number = 0.0;
        std::uint64_t at = 0;
        std::optional<std::uint64_t> changed;
        std::optional<std::uint64_t> delivered;
        std::uint64_t seen = 0; ///< ticks of the first image with the value
        ValueStatistics statistics;
        std::vector<Histories> histories; ///< one, or none
        eStatus_Bits state = eStatus_UndefinedValue;
        std::uint32_t round = 0; ///< of the last image that had the value
    };

    void restart(Track& track, UnitValue const& value, std::uint64_t ticks) const;
    static bool compare(Track& track, shm::record::QelShmMVal const& slot, std::uint64_t ticks);

    std::uint64_t bucketMs_;
    bool isForgotten_ = true;
    std::uint32_t round_ = 0;
    std::vector<Track> tracks_; ///< by slot
};

} // namespace qel::watch

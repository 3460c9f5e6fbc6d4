// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Changes of values from image to image.
#pragma once

#include "tools/qelshm/watch/History.h"
#include "tools/qelshm/watch/UnitStructure.h"

#include "domain/eStatus_Bits.h"
#include "inspect/image/Image.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace qel::watch {

/// A value whose number or state differs from the previous image. Reentrant.
struct ValueChange {
    std::uint32_t value; ///< index into UnitStructure::values()
    eStatus_Bits before;
};

/// Remembers the values of the previous image. A value that is new or comes back counts as unchanged.
///
/// Memory: 64 bytes a slot, 0.6 MB; with histories another 1.1 kB for each value, 9.6 MB for 8800 of them.
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

    /// @return the value's history, valid until the next update; null if none is kept
    History const* history(std::uint32_t pos) const { return tracks_.at(pos).history.get(); }

    /// @return number of the bucket at a moment
    std::uint64_t bucket(std::uint64_t ticks) const { return bucketMs_ == 0 ? 0 : ticks / bucketMs_; }
    /// @return how long a bucket lasts, ms; 0 if no history is kept
    std::uint64_t bucketMs() const { return bucketMs_; }

private:
    struct Track {
        long long svid = 0;
        double number = 0.0;
        std::uint64_t at = 0;
        std::optional<std::uint64_t> changed;
        std::optional<std::uint64_t> delivered;
        std::unique_ptr<History> history;
        eStatus_Bits state = eStatus_UndefinedValue;
        std::uint32_t round = 0; ///< of the last image that had the value
    };

    void restart(Track& track, UnitValue const& value) const;

    std::uint64_t bucketMs_;
    std::uint32_t round_ = 0;
    std::vector<Track> tracks_; ///< by slot
};

} // namespace qel::watch

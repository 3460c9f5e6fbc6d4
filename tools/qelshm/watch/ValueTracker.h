// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What has become of values from look to look.
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

/// A value whose number or state is another than at the look before.
struct ValueChange {
    std::uint32_t value; ///< index into UnitStructure::values()
    eStatus_Bits before;
};

/// Remembers each value that it was shown last time. A value that is new, or comes back, is taken as it is: its first
/// change is the next one.
///
/// Memory: 64 bytes a slot, 0.6 MB; with histories 1.1 kB more for each value that is there, 9.6 MB for 8800 of them.
/// Threads: not shared.
class ValueTracker {
public:
    /// @param bucketMs how long a bucket of the histories lasts, ms; 0 to keep none
    explicit ValueTracker(std::uint64_t bucketMs) : bucketMs_(bucketMs), tracks_(shm::MV_COUNT) {}

    /// @param structure of this image
    /// @param ticks     ms since any fixed moment, of a clock that is never set back
    std::vector<ValueChange> update(UnitStructure const& structure, inspect::Image const& image,
                                    std::uint64_t ticks);

    /// Milliseconds since number or state were seen to change; none when they never were. Of a value's slot, like
    /// all below.
    std::optional<std::uint64_t> sinceChange(std::uint32_t pos, std::uint64_t ticks) const;

    /// Milliseconds since a delivery was seen, be it of the same number.
    std::optional<std::uint64_t> sinceDelivery(std::uint32_t pos, std::uint64_t ticks) const;

    /// Null when none is kept. Valid until the next update.
    History const* history(std::uint32_t pos) const { return tracks_.at(pos).history.get(); }

    /// Number of the bucket that a moment falls into.
    std::uint64_t bucket(std::uint64_t ticks) const { return bucketMs_ == 0 ? 0 : ticks / bucketMs_; }
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
        std::uint32_t round = 0; ///< of the last look at which the value was there
    };

    void restart(Track& track, UnitValue const& value) const;

    std::uint64_t bucketMs_;
    std::uint32_t round_ = 0;
    std::vector<Track> tracks_; ///< by slot
};

} // namespace qel::watch

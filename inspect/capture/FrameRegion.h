// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The region that the frames of a capture lead to.
#pragma once

#include "inspect/capture/CaptureFormat.h"
#include "inspect/image/Image.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace qel::inspect {

/// Applies frames in place, so a frame costs as much as it changes, not as much as a region.
///
/// Threads: reentrant.
class FrameRegion {
public:
    /// As before the first frame: wiped, without a byte of its source.
    FrameRegion();

    void apply(CheckedFrame const& frame);

    /// A copy.
    Image image() const;

    /// All records, missing ones as wiped.
    shm::record::Region const& records() const { return *region_; }

    /// Whether the region is whole and active.
    bool isActive() const;

    /// Whether the last frame changed anything but times and the numbers of values: states, links, ids, keys, root.
    bool hasChangedStates() const { return hasChangedStates_; }

    /// Whether the last frame took its time of delivery from a value, as a new writer does.
    bool hasClearedTimes() const { return hasClearedTimes_; }

private:
    std::size_t kept() const;
    void store(std::size_t word, std::string_view words);
    void note(std::size_t word);

    std::unique_ptr<shm::record::Region> region_; ///< bytes that the source lacks are always wiped
    std::uint64_t size_ = 0;
    bool hasChangedStates_ = false;
    bool hasClearedTimes_ = false;
};

} // namespace qel::inspect

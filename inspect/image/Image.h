// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A copy of the region that nothing can change any more.
#pragma once

#include "region/QelShmRecords.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace qel::inspect {

/// The bytes of a region at one moment, in memory of its own. A source may be shorter or longer than the region:
/// bytes that it lacks read as WIPE_BYTE, so a record that is not there reads as free, and bytes past the region are
/// not kept. A copy of a region that was being written may hold slots that are half old and half new.
///
/// Never changes; a copy of an image shares the bytes and costs nothing. Threads: any thread.
class Image {
public:
    /// Of a source without a byte.
    Image();

    /// Copies from memory.
    /// @param bytes the source's first min(size, REGION_SIZE) bytes
    /// @param size  how many bytes the source has
    Image(void const* bytes, std::uint64_t size);

    /// Takes over a region whose first min(size, REGION_SIZE) bytes are those of the source; must not be null.
    Image(std::unique_ptr<shm::record::Region> region, std::uint64_t size);

    // No moves: they would leave an image without bytes, and a copy is as cheap.
    Image(Image const&) = default;
    Image& operator=(Image const&) = default;
    ~Image() = default;

    /// How many bytes the source had, be it fewer or more than REGION_SIZE.
    std::uint64_t size() const { return size_; }

    /// Whether the source had every byte of the region.
    bool isWhole() const { return size_ >= shm::REGION_SIZE; }

    /// Whether the root announces the region as active.
    bool isActive() const { return root().version == shm::ACTIVE_VERSION; }

    /// The slot at a position, null when there is no such position. Lives as long as any copy of the image.
    shm::record::QelShmMP const* point(std::uint32_t pos) const;
    shm::record::QelShmMVal const* value(std::uint32_t pos) const;

    shm::record::QelShmRoot const& root() const { return region_->root; }

    /// All records, those of missing bytes included.
    shm::record::Region const& region() const { return *region_; }

    /// Exactly the bytes that the source had, at most REGION_SIZE.
    std::string_view bytes() const;

private:
    std::shared_ptr<shm::record::Region const> region_;
    std::uint64_t size_;
};

} // namespace qel::inspect

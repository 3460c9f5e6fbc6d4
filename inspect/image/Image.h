// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// An unchangeable copy of the region.
#pragma once

#include "region/QelShmRecords.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace qel::inspect {

/// The bytes of a region at one moment, in memory of its own. The source may be shorter or longer than the region:
/// bytes that it lacks read as WIPE_BYTE, so missing records read as free; bytes behind the region are dropped. If the
/// region was being written while it was copied, slots may be half old and half new.
///
/// An image never changes. Copies of it share the bytes and cost nothing.
///
/// Threads: thread-safe.
class Image {
public:
    /// The image of a source without bytes.
    Image();

    /// A whole region as nobody has written to it: each byte is WIPE_BYTE.
    static Image wiped();

    /// Copies from memory.
    /// @param bytes the source's first min(size, REGION_SIZE) bytes
    /// @param size  how many bytes the source has
    Image(void const* bytes, std::uint64_t size);

    /// Takes over a region.
    /// @param region its first min(size, REGION_SIZE) bytes are those of the source; must not be null
    /// @param size   how many bytes the source has
    Image(std::unique_ptr<shm::record::Region> region, std::uint64_t size);

    // No moves: they would leave an image without bytes, and a copy is as cheap.
    Image(Image const&) = default;
    Image& operator=(Image const&) = default;
    ~Image() = default;

    /// How many bytes the source has, which may be less or more than REGION_SIZE.
    std::uint64_t size() const { return size_; }

    /// Whether the source has every byte of the region.
    bool isWhole() const { return size_ >= shm::REGION_SIZE; }

    /// Whether the root announces the region as active.
    bool isActive() const { return root().version == shm::ACTIVE_VERSION; }

    /// The slot at a position. It lives as long as any copy of the image.
    /// @return null if there is no such position
    shm::record::QelShmMP const* point(std::uint32_t pos) const;
    /// @copydoc point
    shm::record::QelShmMVal const* value(std::uint32_t pos) const;

    /// The root record; wiped if the source lacks it.
    shm::record::QelShmRoot const& root() const { return region_->root; }

    /// All records, missing ones as wiped.
    shm::record::Region const& region() const { return *region_; }

    /// The bytes that the source has, at most REGION_SIZE.
    std::string_view bytes() const;

private:
    std::shared_ptr<shm::record::Region const> region_;
    std::uint64_t size_;
};

} // namespace qel::inspect

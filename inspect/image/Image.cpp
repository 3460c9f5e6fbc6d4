// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/Image.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace qel::inspect {

namespace {

std::size_t keptBytes(std::uint64_t size) {
    return static_cast<std::size_t>(std::min<std::uint64_t>(size, shm::REGION_SIZE));
}

std::unique_ptr<shm::record::Region> copyOf(void const* bytes, std::uint64_t size) {
    // Not zeroed: bytes that are not copied are wiped later.
    std::unique_ptr<shm::record::Region> region(new shm::record::Region);
    if (size != 0) {
        std::memcpy(region.get(), bytes, keptBytes(size));
    }
    return region;
}

} // namespace

Image::Image() : Image(nullptr, 0) {}

Image Image::wiped() {
    auto region = std::make_unique<shm::record::Region>();
    std::memset(static_cast<void*>(region.get()), shm::WIPE_BYTE, shm::REGION_SIZE);
    return {std::move(region), shm::REGION_SIZE};
}

Image::Image(void const* bytes, std::uint64_t size) : Image(copyOf(bytes, size), size) {}

Image::Image(std::unique_ptr<shm::record::Region> region, std::uint64_t size) : size_(size) {
    auto const kept = keptBytes(size);
    std::memset(reinterpret_cast<unsigned char*>(region.get()) + kept, shm::WIPE_BYTE,
                shm::REGION_SIZE - kept);
    region_ = std::move(region);
}

shm::record::QelShmMP const* Image::point(std::uint32_t pos) const {
    return pos < shm::MP_COUNT ? &region_->points[pos] : nullptr;
}

shm::record::QelShmMVal const* Image::value(std::uint32_t pos) const {
    return pos < shm::MV_COUNT ? &region_->values[pos] : nullptr;
}

std::string_view Image::bytes() const {
    return {reinterpret_cast<char const*>(region_.get()), keptBytes(size_)};
}

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The shared-memory object as plain bytes, opened by its name and read without the library's records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace qel::test {

/// Numbers of the byte layout, repeated here on purpose: tests compare the library with them.
constexpr std::size_t rawRegionSize = 320032;
constexpr std::size_t rawValuesOffset = 38400;
constexpr std::size_t rawRootOffset = 320000;
constexpr std::uint32_t rawNone = 0xFFFFFFFF;

constexpr std::size_t rawPoint(std::uint32_t pos) {
    return pos * std::size_t{48};
}
constexpr std::size_t rawValue(std::uint32_t pos) {
    return rawValuesOffset + pos * std::size_t{32};
}

/// Offsets of fields: of a point and of a value within its slot, of the root within the region.
namespace field {
constexpr std::size_t pos = 0;
constexpr std::size_t next = 4;
constexpr std::size_t prev = 8;
constexpr std::size_t mvs = 12;
constexpr std::size_t children = 16;
constexpr std::size_t parent = 20;
constexpr std::size_t guid = 24;
constexpr std::size_t pointAt = 32;
constexpr std::size_t pointState = 40;
constexpr std::size_t pointType = 44;
constexpr std::size_t number = 0;
constexpr std::size_t valueAt = 8;
constexpr std::size_t valueState = 16;
constexpr std::size_t valueNext = 20;
constexpr std::size_t valueKey = 24;
constexpr std::size_t rootGuid = 320000;
constexpr std::size_t rootUnused = 320008;
constexpr std::size_t devices = 320016;
constexpr std::size_t groups = 320020;
constexpr std::size_t rootState = 320024;
constexpr std::size_t version = 320028;
} // namespace field

/// Whether an object with the region's name exists.
bool rawRegionExists();

/// Its size in bytes, -1 if there is none.
long rawRegionSizeNow();

/// Its inode number, which distinguishes objects of the same name; 0 if there is none.
std::uint64_t rawRegionInode();

/// A writable mapping of the object, independent of the library's.
///
/// Threads: reentrant.
class RawRegion {
public:
    /// Maps an existing object of the right size.
    /// @param create whether to create the object first, filled with zeros
    explicit RawRegion(bool create = false);
    ~RawRegion();
    RawRegion(RawRegion const&) = delete;
    RawRegion& operator=(RawRegion const&) = delete;

    std::uint8_t* bytes() const { return bytes_; }
    std::vector<std::uint8_t> copy() const { return {bytes_, bytes_ + rawRegionSize}; }
    void fill(std::uint8_t byte) const { std::memset(bytes_, byte, rawRegionSize); }

    template <typename Number>
    Number get(std::size_t offset) const {
        Number number;
        std::memcpy(&number, bytes_ + offset, sizeof number);
        return number;
    }

    template <typename Number>
    void set(std::size_t offset, Number number) const {
        std::memcpy(bytes_ + offset, &number, sizeof number);
    }

    std::uint32_t u32(std::size_t offset) const { return get<std::uint32_t>(offset); }

private:
    std::uint8_t* bytes_ = nullptr;
};

} // namespace qel::test

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The stores that the real writer makes into the region, in its order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qel::test {

/// What orders a store among the others.
enum class StoreKind : std::uint8_t {
    Plain,   ///< nothing but the order within its own location
    Release, ///< everything before it is visible before it
    Fence    ///< no store: everything before it is visible before everything after it
};

/// One store of up to 8 bytes, or a fence.
struct Store {
    StoreKind kind = StoreKind::Fence;
    std::uint8_t width = 0;    ///< bytes
    std::uint32_t offset = 0;  ///< in the region
    std::uint64_t before = 0;  ///< what the bytes held, the first byte lowest
    std::uint64_t written = 0; ///< what they hold then
};

using Stores = std::vector<Store>;

/// Puts the bytes of a store, or those that it replaced, into an image of the region.
void apply(Store const& store, std::uint8_t* region);
void takeBack(Store const& store, std::uint8_t* region);

/// While one lives, the functions of recording/region/RegionFields.h note in it what they store. One at a time, and
/// only stores into its region may be made meanwhile.
///
/// Threads: thread-bound to the thread that made it, which alone may store meanwhile.
class StoreLog {
public:
    /// @param region first byte of the mapping that is stored into
    explicit StoreLog(void const* region);
    ~StoreLog();
    StoreLog(StoreLog const&) = delete;
    StoreLog& operator=(StoreLog const&) = delete;

    Stores const& stores() const { return stores_; }

    // For the recording functions; without a living log they do nothing.

    /// Called before the store is made.
    static void note(StoreKind kind, void const* field, std::size_t width, void const* written);
    static void noteFence();

    /// A whole slot that is about to be filled with one byte: a plain store into each of its fields.
    static void noteWipe(void const* slot, std::size_t size, std::uint8_t byte);

private:
    std::uint8_t const* region_;
    Stores stores_;
};

} // namespace qel::test

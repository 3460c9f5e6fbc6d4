// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How single fields of the region are read and written while other processes look on.
#pragma once

#include "region/QelShmRecords.h"

#include <cstdint>
#include <cstring>
#include <type_traits>

namespace shm {

/// Writes one field as one plain, aligned store that the compiler neither splits, merges nor moves past another store
/// of this kind. No barrier: readers accept seeing slots half-written.
template <typename Field>
void storeField(Field& field, std::common_type_t<Field> value) {
    static_assert(std::is_trivially_copyable_v<Field> && sizeof(Field) <= 8);
    *const_cast<Field volatile*>(&field) = value;
}

/// Writes a link (next, prev, children, mvs, or a list head of the root) after everything that was stored before it, on
/// weakly ordered cores too: a reader that follows the new link finds the slot behind it initialised.
inline void storeLink(std::uint32_t& link, std::uint32_t pos) {
    __atomic_store_n(&link, pos, __ATOMIC_RELEASE);
}

/// Reads a link exactly once, so that the number that is checked is the number that is used.
inline std::uint32_t loadLink(std::uint32_t const& link) {
    return __atomic_load_n(&link, __ATOMIC_RELAXED);
}

/// Stands between the stores that unlink slots and the first one that fills such a slot anew. On weakly ordered cores a
/// plain store may pass a release store before it, and a reader that still follows the old link would meet new content.
inline void orderUnlinkBeforeReuse() {
    __atomic_thread_fence(__ATOMIC_ACQ_REL);
}

/// Fills a free slot, which may have been linked before, with WIPE_BYTE.
template <typename Slot>
void wipeSlot(Slot& slot) {
    static_assert(std::is_trivially_copyable_v<Slot>);
    orderUnlinkBeforeReuse();
    std::memset(&slot, WIPE_BYTE, sizeof slot);
}

/// Publishes the root's version after everything that was written before it, on weakly ordered cores too.
inline void storeVersion(record::QelShmRoot& root, std::uint8_t version) {
    __atomic_store_n(&root.version, version, __ATOMIC_RELEASE);
}

/// Reads the root's version before everything that it announces.
inline std::uint8_t loadVersion(record::QelShmRoot const& root) {
    return __atomic_load_n(&root.version, __ATOMIC_ACQUIRE);
}

} // namespace shm

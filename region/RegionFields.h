// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How single fields of the region are read and written while other processes read them.
///
/// The order of these stores is what readers rely on; docs/reference/region-layout.md lists the orders.
///
/// Threads: reentrant. Storing into one slot from two threads needs the caller's lock.
#pragma once

#include "region/LoadLink.h"
#include "region/QelShmRecords.h"

#include <cstdint>
#include <cstring>
#include <type_traits>

namespace shm {

/// Writes one field by one plain, aligned store. The compiler neither splits nor merges it, nor moves it past another
/// store of this kind. There is no barrier: readers may see a slot half written.
/// @param field in the region, at most 8 bytes
/// @param value to store
template <typename Field>
void storeField(Field& field, std::common_type_t<Field> value) {
    static_assert(std::is_trivially_copyable_v<Field> && sizeof(Field) <= 8);
    *const_cast<Field volatile*>(&field) = value;
}

/// Writes a link (next, prev, children, mvs, or a list head of the root) after all earlier stores (release), also on
/// weakly ordered cores. So a reader that follows the new link finds an initialised slot.
/// @param link in the region
/// @param pos  position of the slot, NO_POSITION for none
inline void storeLink(std::uint32_t& link, std::uint32_t pos) {
    __atomic_store_n(&link, pos, __ATOMIC_RELEASE);
}

/// Orders the stores that unlinked a slot before the stores that fill it again. On weakly ordered cores a plain
/// store may pass an earlier release store; a reader that still follows the old link would then meet the new
/// content.
inline void orderUnlinkBeforeReuse() {
    __atomic_thread_fence(__ATOMIC_ACQ_REL);
}

/// Fills a free slot with WIPE_BYTE. The slot may have been linked before.
/// @param slot of the region
template <typename Slot>
void wipeSlot(Slot& slot) {
    static_assert(std::is_trivially_copyable_v<Slot>);
    orderUnlinkBeforeReuse();
    std::memset(&slot, WIPE_BYTE, sizeof slot);
}

/// Writes the root's version after all earlier stores (release), also on weakly ordered cores.
/// @param root    of the region
/// @param version ACTIVE_VERSION
inline void storeVersion(record::QelShmRoot& root, std::uint8_t version) {
    __atomic_store_n(&root.version, version, __ATOMIC_RELEASE);
}

/// Reads the root's version before everything that it announces (acquire).
/// @param root of the region
/// @return the version byte
inline std::uint8_t loadVersion(record::QelShmRoot const& root) {
    return __atomic_load_n(&root.version, __ATOMIC_ACQUIRE);
}

} // namespace shm

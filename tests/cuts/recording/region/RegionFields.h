// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Stands in the place of region/RegionFields.h where this folder's tests compile the writer once more: the same
/// functions with the same effect, which also note each store in the StoreLog that lives.
///
/// What they do to the region must stay what region/RegionFields.h does; tests/cuts compares the notes with the bytes.
#pragma once

#include "region/LoadLink.h"
#include "region/QelShmRecords.h"
#include "tests/cuts/StoreLog.h"

#include <cstdint>
#include <cstring>
#include <type_traits>

namespace shm {

// A namespace of their own, so that the program may hold the plain functions too.
inline namespace recorded {

template <typename Field>
void storeField(Field& field, std::common_type_t<Field> value) {
    static_assert(std::is_trivially_copyable_v<Field> && sizeof(Field) <= 8);
    qel::test::StoreLog::note(qel::test::StoreKind::Plain, &field, sizeof field, &value);
    *const_cast<Field volatile*>(&field) = value;
}

inline void storeLink(std::uint32_t& link, std::uint32_t pos) {
    qel::test::StoreLog::note(qel::test::StoreKind::Release, &link, sizeof link, &pos);
    __atomic_store_n(&link, pos, __ATOMIC_RELEASE);
}

inline void orderUnlinkBeforeReuse() {
    qel::test::StoreLog::noteFence();
    __atomic_thread_fence(__ATOMIC_ACQ_REL);
}

template <typename Slot>
void wipeSlot(Slot& slot) {
    static_assert(std::is_trivially_copyable_v<Slot>);
    orderUnlinkBeforeReuse();
    qel::test::StoreLog::noteWipe(&slot, sizeof slot, WIPE_BYTE);
    std::memset(&slot, WIPE_BYTE, sizeof slot);
}

inline void storeVersion(record::QelShmRoot& root, std::uint8_t version) {
    qel::test::StoreLog::note(qel::test::StoreKind::Release, &root.version, sizeof version, &version);
    __atomic_store_n(&root.version, version, __ATOMIC_RELEASE);
}

inline std::uint8_t loadVersion(record::QelShmRoot const& root) {
    return __atomic_load_n(&root.version, __ATOMIC_ACQUIRE);
}

} // namespace recorded

} // namespace shm

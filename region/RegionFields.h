/// @file
/// How single fields of the region are read and written while other processes look on.
#pragma once

#include "region/QelShmRecords.h"

#include <type_traits>

namespace shm {

/// Writes one field as one plain, aligned store that the compiler neither splits, merges nor moves past another store
/// of this kind. No barrier: readers accept seeing slots half-written.
template <typename Field>
void storeField(Field& field, std::common_type_t<Field> value) {
    static_assert(std::is_trivially_copyable_v<Field> && sizeof(Field) <= 8);
    *const_cast<Field volatile*>(&field) = value;
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

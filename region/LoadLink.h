// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How a link of the region is read while other processes write it.
#pragma once

#include <cstdint>

namespace shm {

/// Reads a link exactly once, so the number that is checked is the number that is used.
///
/// Threads: reentrant.
/// @param link in the region
/// @return the position, unchecked
inline std::uint32_t loadLink(std::uint32_t const& link) {
    return __atomic_load_n(&link, __ATOMIC_RELAXED);
}

} // namespace shm

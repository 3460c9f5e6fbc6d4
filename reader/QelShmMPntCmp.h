// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The order in which sibling points are visited.
#pragma once

#include "region/QelExport.h"
#include "region/QelShmMPnt.h"

#include <cstdint>

namespace shm {

/// Orders points by a signed 64-bit key made from their sensor ids. Sort stably, to keep points of equal keys in
/// the order of their list.
///
/// Threads: reentrant. There is no state.
class QEL_EXPORT QelShmMPntCmp {
public:
    /// @param left  must refer to a slot
    /// @param right must refer to a slot
    /// @return whether left comes before right
    bool operator()(QelShmMPnt const& left, QelShmMPnt const& right) const {
        return key(left->guid) < key(right->guid);
    }

    /// Makes the key of a sensor id. For an I2C sensor the bits 16-23 and 40-47 are cleared. For a
    /// residual-current monitor the bits 0-15 become 4 and the bits 48-55 become 0. Any other id is its own key.
    /// @param svid of a point
    /// @return the key
    static std::int64_t key(long long svid);
};

} // namespace shm

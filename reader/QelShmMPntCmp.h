// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Order in which sibling points are visited.
#pragma once

#include "region/QelExport.h"
#include "region/QelShmMPnt.h"

#include <cstdint>

namespace shm {

/// Orders points by a signed 64-bit key that is made of their sensor ids; stable sorting keeps points of
/// equal keys in the order of their list.
class QEL_EXPORT QelShmMPntCmp {
public:
    bool operator()(QelShmMPnt const& left, QelShmMPnt const& right) const {
        return key(left->guid) < key(right->guid);
    }

    /// The sort key of a sensor id. By sensor type: an I2C sensor counts without its bits 16-23 and 40-47, a
    /// residual-current monitor has its bits 0-15 replaced by 4 and its bits 48-55 by 0, all others count
    /// as they are.
    static std::int64_t key(long long svid);
};

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelShmPoint.h"

#include "reader/QelShmPointRange.h"

namespace shm {

QelShmMPnt QelShmPoint::ancestor(unsigned int level) const {
    if (level == depth_) {
        return QelShmMPnt(&**this);
    }
    return level == 0 || level > depth_ ? QelShmMPnt()
                                        : QelShmMPnt(scan_->slotAt(scan_->levels_[level - 1].current));
}

} // namespace shm

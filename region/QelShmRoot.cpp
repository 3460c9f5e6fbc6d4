// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/QelShmRoot.h"

#include "region/RegionFields.h"

namespace shm {

unsigned int QelShmRoot::cnt(unsigned int pos) const {
    unsigned int count = 0;
    while (region_ != nullptr && pos < MP_COUNT) {
        ++count;
        pos = loadLink(region_->points[pos].next);
    }
    return count;
}

unsigned int QelShmRoot::dvcCnt() const {
    return region_ == nullptr ? 0 : cnt(loadLink(region_->root.devices));
}

unsigned int QelShmRoot::grpCnt() const {
    return region_ == nullptr ? 0 : cnt(loadLink(region_->root.groups));
}

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/MPntPosVisitor.h"

namespace shm {

void MPntPosVisitor::onMPnt(QelShmMPnt const& point, unsigned int /*depth*/,
                            std::shared_ptr<IQelVisitorResult>& /*result*/) {
    index_->emplace(point->guid, point->pos);
}

} // namespace shm

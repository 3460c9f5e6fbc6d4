// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/BaseQelShmVisitor.h"

namespace shm {

void BaseQelShmVisitor::onRoot(QelShmRoot const& /*root*/, std::shared_ptr<IQelVisitorResult>& /*result*/) {}

void BaseQelShmVisitor::onMPnt(QelShmMPnt const& /*point*/, unsigned int /*depth*/,
                               std::shared_ptr<IQelVisitorResult>& /*result*/) {}

void BaseQelShmVisitor::onMVal(QelShmMVal const& /*value*/, long long /*svid*/, unsigned int /*depth*/,
                               std::shared_ptr<IQelVisitorResult>& /*result*/) {}

bool BaseQelShmVisitor::mvFound() const {
    return found_;
}

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Visitor to derive from when only some callbacks matter.
#pragma once

#include "reader/IQelSharedMemoryVisitor.h"
#include "region/QelExport.h"

#include <memory>

namespace shm {

/// Ignores everything it is told.
class QEL_EXPORT BaseQelShmVisitor : public IQelSharedMemoryVisitor {
public:
    void onRoot(QelShmRoot const& root, std::shared_ptr<IQelVisitorResult>& result) override;
    void onMPnt(QelShmMPnt const& point, unsigned int depth,
                std::shared_ptr<IQelVisitorResult>& result) override;
    void onMVal(QelShmMVal const& value, long long svid, unsigned int depth,
                std::shared_ptr<IQelVisitorResult>& result) override;
    bool mvFound() const override;

protected:
    /// A derived onMVal sets this at the value it looks for. Nothing resets it: from then on each point of
    /// the same walk passes only its first value on.
    bool found_ = false;
};

} // namespace shm

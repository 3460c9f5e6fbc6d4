// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Base class for visitors that need only some of the callbacks.
#pragma once

#include "reader/IQelSharedMemoryVisitor.h"
#include "region/QelExport.h"

#include <memory>

namespace shm {

/// Ignores all callbacks. Derive from it and override those that matter.
///
/// Threads: thread-bound to the visiting thread, on which the callbacks run.
class QEL_EXPORT BaseQelShmVisitor : public IQelSharedMemoryVisitor {
public:
    /// Does nothing.
    /// @param root   null handle while no region is mapped
    /// @param result the visit's result object
    void onRoot(QelShmRoot const& root, std::shared_ptr<IQelVisitorResult>& result) override;

    /// Does nothing.
    /// @param point  the point
    /// @param depth  1 for a top-level point
    /// @param result the visit's result object
    void onMPnt(QelShmMPnt const& point, unsigned int depth,
                std::shared_ptr<IQelVisitorResult>& result) override;

    /// Does nothing.
    /// @param value  the value
    /// @param svid   sensor id of its point
    /// @param depth  of its point
    /// @param result the visit's result object
    void onMVal(QelShmMVal const& value, long long svid, unsigned int depth,
                std::shared_ptr<IQelVisitorResult>& result) override;

    /// @return found_
    bool mvFound() const override;

protected:
    /// An overridden onMVal() sets this at the value that it looks for. Nothing resets it: afterwards the visit
    /// passes only the first value of each further point.
    bool found_ = false;
};

} // namespace shm

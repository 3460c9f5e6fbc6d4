// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Callbacks of a visit of the region.
#pragma once

#include "region/QelExport.h"
#include "region/QelShmMPnt.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRoot.h"

#include <memory>

namespace shm {

class IQelVisitorResult;

/// Callbacks of QelSharedMemoryReader's visits. Each receives the visit's result object. The handles are valid
/// until the region is unmapped; the writer may change their slots at any moment. A callback may use the reader
/// that calls it: look up, visit, and install another visitor.
///
/// Threads: thread-bound to the visiting thread, on which the callbacks run.
class QEL_EXPORT IQelSharedMemoryVisitor {
public:
    /// Has no state.
    IQelSharedMemoryVisitor() = default;
    IQelSharedMemoryVisitor(IQelSharedMemoryVisitor const&) = delete;
    IQelSharedMemoryVisitor& operator=(IQelSharedMemoryVisitor const&) = delete;

    // Virtual operations in the order of their slots (binary interface); new ones go last.

    /// The reader destroys its visitor through this.
    virtual ~IQelSharedMemoryVisitor();

    /// A full visit starts.
    /// @param root   a null handle while no region is mapped
    /// @param result the visit's result object
    virtual void onRoot(QelShmRoot const& root, std::shared_ptr<IQelVisitorResult>& result) = 0;

    /// A point is reached.
    /// @param point  refers to its slot
    /// @param depth  1 for a top-level point, one more for each level of children
    /// @param result the visit's result object
    virtual void onMPnt(QelShmMPnt const& point, unsigned int depth,
                        std::shared_ptr<IQelVisitorResult>& result) = 0;

    /// A value of a point is reached.
    /// @param value  refers to its slot
    /// @param svid   sensor id of the point
    /// @param depth  depth of the point
    /// @param result the visit's result object
    virtual void onMVal(QelShmMVal const& value, long long svid, unsigned int depth,
                        std::shared_ptr<IQelVisitorResult>& result) = 0;

    /// Asked after each onMVal().
    /// @return true to skip the other values of that point
    virtual bool mvFound() const = 0;
};

} // namespace shm

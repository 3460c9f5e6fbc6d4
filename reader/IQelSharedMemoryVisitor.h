// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Who is told what a visit of the region reaches.
#pragma once

#include "region/QelExport.h"
#include "region/QelShmMPnt.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRoot.h"

#include <memory>

namespace shm {

class IQelVisitorResult;

/// Callbacks of QelSharedMemoryReader's visits. Each is handed the visit's result object. The handles are
/// good until the region is unmapped; the writer may change what they show at any moment. A callback may use the
/// reader that calls it: look up, visit, and install another visitor.
///
/// Threads: called on the thread that visits.
class QEL_EXPORT IQelSharedMemoryVisitor {
public:
    IQelSharedMemoryVisitor() = default;
    IQelSharedMemoryVisitor(IQelSharedMemoryVisitor const&) = delete;
    IQelSharedMemoryVisitor& operator=(IQelSharedMemoryVisitor const&) = delete;

    // Virtual operations in slot order, part of the binary contract; new ones go last.

    virtual ~IQelSharedMemoryVisitor();

    /// A full visit starts.
    /// @param root a null handle while no region is mapped
    virtual void onRoot(QelShmRoot const& root, std::shared_ptr<IQelVisitorResult>& result) = 0;

    /// A point is reached.
    /// @param depth 1 for a top-level point, one more per level of children
    virtual void onMPnt(QelShmMPnt const& point, unsigned int depth,
                        std::shared_ptr<IQelVisitorResult>& result) = 0;

    /// A value of a point is reached.
    /// @param svid,depth of the point that owns the value
    virtual void onMVal(QelShmMVal const& value, long long svid, unsigned int depth,
                        std::shared_ptr<IQelVisitorResult>& result) = 0;

    /// Asked after each onMVal; true ends the walk over the values of that point.
    virtual bool mvFound() const = 0;
};

} // namespace shm

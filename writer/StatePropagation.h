// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Carries the states of values and children up the tree.
#pragma once

#include "region/QelShmRecords.h"

#include <list>

namespace shm {

/// Combines the states of points in the region, children before their parents. Folds values and children one by
/// one, without a list between.
///
/// Threads: thread-bound to the thread that changes the structure.
class StatePropagation {
public:
    /// @param region must outlive the object
    explicit StatePropagation(record::Region& region) : region_(region) {}

    /// Combines the states of all points.
    /// @return the global state
    eStatus_Bits combineAll() const;

    /// Combines a point, all points below it, and its following siblings.
    /// @param first the point
    /// @param out   receives the state that each of the siblings reports to its parent
    void combineSiblings(QelShmMP& first, std::list<eStatus_Bits>& out) const;

private:
    template <typename Sink>
    void siblings(std::uint32_t pos, Sink& sink) const;
    eStatus_Bits combine(QelShmMP& mp, eStatus_Bits children) const;

    record::Region& region_;
};

} // namespace shm

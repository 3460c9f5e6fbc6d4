// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Handle to the root of the region.
#pragma once

#include "region/QelExport.h"
#include "region/QelShmRecords.h"

namespace shm {

/// Holds the region's base address. It owns nothing and may be copied freely. It must not be used after the region was
/// unmapped.
///
/// Threads: reentrant. A list that the writer is changing may be seen half changed.
class QEL_EXPORT QelShmRoot {
public:
    /// Refers to nothing: all counters give 0.
    QelShmRoot() = default;
    /// @param base start of a mapping of REGION_SIZE bytes, or null
    explicit QelShmRoot(void const* base) : region_(static_cast<record::Region const*>(base)) {}

    /// The handle must refer to a region.
    /// @return the root's record
    record::QelShmRoot const* operator->() const { return &region_->root; }
    /// The handle must refer to a region.
    /// @return the root's record
    record::QelShmRoot const& operator*() const { return region_->root; }
    /// @return whether the handle refers to a region
    explicit operator bool() const { return region_ != nullptr; }

    /// Counts a list of siblings. The list must not be cyclic; the writer never creates a cyclic one.
    /// @param pos position of the list's first point
    /// @return the number of points; 0 for MP_COUNT and above, and when the handle refers to nothing
    unsigned int cnt(unsigned int pos) const;

    /// @return the number of top-level devices, see cnt()
    unsigned int dvcCnt() const;
    /// @return the number of top-level groups, see cnt()
    unsigned int grpCnt() const;

private:
    record::Region const* region_ = nullptr;
};

} // namespace shm

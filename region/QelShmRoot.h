// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Handle to the root of the region.
#pragma once

#include "region/QelExport.h"
#include "region/QelShmRecords.h"

namespace shm {

/// Holds the region's base address and owns nothing; copied freely. Must not be used after the region was unmapped.
///
/// Threads: reentrant; lists that the writer is re-linking may be seen half-changed.
class QEL_EXPORT QelShmRoot {
public:
    /// Refers to nothing: both counters give 0.
    QelShmRoot() = default;
    /// @param base start of a mapping of REGION_SIZE bytes, or null
    explicit QelShmRoot(void const* base) : region_(static_cast<record::Region const*>(base)) {}

    /// The handle must refer to a region.
    record::QelShmRoot const* operator->() const { return &region_->root; }
    record::QelShmRoot const& operator*() const { return region_->root; }
    explicit operator bool() const { return region_ != nullptr; }

    /// Number of points in the sibling chain that starts at a position; 0 when the position is none, or when the
    /// handle refers to nothing. The chain must not be cyclic; the writer never creates such a one.
    unsigned int cnt(unsigned int pos) const;

    /// Number of top-level devices and of top-level groups.
    unsigned int dvcCnt() const;
    unsigned int grpCnt() const;

private:
    record::Region const* region_ = nullptr;
};

} // namespace shm

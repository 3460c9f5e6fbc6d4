// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Handle to one measured value in the region.
#pragma once

#include "region/QelExport.h"
#include "region/QelShmRecords.h"

namespace shm {

/// Points at a slot of the mapped region and owns nothing; copied freely. It shows whatever the slot holds at the
/// moment it is read, and must not be used after the region was unmapped.
///
/// Threads: reentrant; reading a slot that the writer is changing may show a mix of old and new fields.
class QEL_EXPORT QelShmMVal {
public:
    /// Refers to nothing.
    QelShmMVal() = default;
    explicit QelShmMVal(record::QelShmMVal const* slot) : slot_(slot) {}

    record::QelShmMVal const* operator->() const { return slot_; }
    record::QelShmMVal const& operator*() const { return *slot_; }
    explicit operator bool() const { return slot_ != nullptr; }

private:
    record::QelShmMVal const* slot_ = nullptr;
};

} // namespace shm

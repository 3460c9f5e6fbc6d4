// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Handle to one measured value in the region.
#pragma once

#include "region/QelExport.h"
#include "region/QelShmRecords.h"

namespace shm {

/// A pointer to a value's slot in the mapped region. It owns nothing and may be copied freely. Each access reads
/// what the slot holds at that moment. It must not be used after the region was unmapped.
///
/// Threads: reentrant. While the writer changes the slot, an access may see a mix of old and new fields.
class QEL_EXPORT QelShmMVal {
public:
    /// Refers to nothing.
    QelShmMVal() = default;
    /// @param slot of the mapped region, or null
    explicit QelShmMVal(record::QelShmMVal const* slot) : slot_(slot) {}

    /// @return the slot, null when the handle refers to nothing
    record::QelShmMVal const* operator->() const { return slot_; }
    /// The handle must refer to a slot.
    /// @return the slot
    record::QelShmMVal const& operator*() const { return *slot_; }
    /// @return whether the handle refers to a slot
    explicit operator bool() const { return slot_ != nullptr; }

private:
    record::QelShmMVal const* slot_ = nullptr;
};

} // namespace shm

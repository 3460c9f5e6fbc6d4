// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Handle to one measurement point in the region.
#pragma once

#include "region/QelExport.h"
#include "region/QelShmRecords.h"

#include <string>

namespace shm {

/// Points at a slot of the mapped region and owns nothing; copied freely. It shows whatever the slot holds at the
/// moment it is read: when the writer removes the point and reuses the slot, the handle shows the new point. It must
/// not be used after the region was unmapped.
///
/// Threads: reentrant; reading a slot that the writer is changing may show a mix of old and new fields.
class QEL_EXPORT QelShmMPnt {
public:
    /// Refers to nothing.
    QelShmMPnt() = default;
    explicit QelShmMPnt(record::QelShmMP const* slot) : slot_(slot) {}

    record::QelShmMP const* operator->() const { return slot_; }
    record::QelShmMP const& operator*() const { return *slot_; }
    explicit operator bool() const { return slot_ != nullptr; }

    /// Text of the point's type code, by the kind and level that its sensor id names: "Schuko", "16A;C", "1P", ...
    /// Unknown codes give the "UNKNOWN ..." text of their table, kinds without a table the empty string.
    /// The handle must refer to a slot.
    std::string tstr() const noexcept;

private:
    record::QelShmMP const* slot_ = nullptr;
};

} // namespace shm

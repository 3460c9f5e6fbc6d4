// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Handle to one measurement point in the region.
#pragma once

#include "region/QelExport.h"
#include "region/QelShmRecords.h"

#include <string>

namespace shm {

/// A pointer to a point's slot in the mapped region. It owns nothing and may be copied freely. Each access reads
/// what the slot holds at that moment: when the writer removes the point and reuses the slot, the handle shows the
/// new point. It must not be used after the region was unmapped.
///
/// Threads: reentrant. While the writer changes the slot, an access may see a mix of old and new fields.
class QEL_EXPORT QelShmMPnt {
public:
    /// Refers to nothing.
    QelShmMPnt() = default;
    /// @param slot of the mapped region, or null
    explicit QelShmMPnt(record::QelShmMP const* slot) : slot_(slot) {}

    /// @return the slot, null when the handle refers to nothing
    record::QelShmMP const* operator->() const { return slot_; }
    /// The handle must refer to a slot.
    /// @return the slot
    record::QelShmMP const& operator*() const { return *slot_; }
    /// @return whether the handle refers to a slot
    explicit operator bool() const { return slot_ != nullptr; }

    /// Names the point's type code. The sensor id's kind and deepest level choose the table. The handle must refer to a
    /// slot.
    /// @return for example "Schuko", "16A;C" or "1P"; the table's "UNKNOWN ..." text for an unknown code, "" for a kind
    ///         without a table
    std::string tstr() const noexcept;

private:
    record::QelShmMP const* slot_ = nullptr;
};

} // namespace shm

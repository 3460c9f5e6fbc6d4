// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A point of a scan.
#pragma once

#include "reader/QelShmValueRange.h"
#include "region/LoadLink.h"
#include "region/QelExport.h"
#include "region/QelShmMPnt.h"
#include "region/QelShmRecords.h"

#include <cstdint>

namespace shm {

class QelShmPointRange;

/// A point that a scan shows: the handle to its slot, its place in the tree and its values. A copy stays valid while the
/// region is mapped, but for ancestor().
///
/// The members belong to the binary interface, because programs contain the code below.
///
/// Threads: reentrant. While the writer changes the slot, an access may see a mix of old and new fields.
class QelShmPoint : public QelShmMPnt {
public:
    /// Refers to nothing.
    QelShmPoint() = default;

    /// @return how deep the point lies: 1 for a top-level point
    unsigned int depth() const { return depth_; }

    /// @return sensor id of the point; with a value's key in the low 16 bits it is that of the value
    long long svid() const { return (*this)->guid; }
    /// @return type code of the point; tstr() names it
    std::uint8_t type() const { return (*this)->type; }
    /// @return state of the point
    eStatus_Bits state() const { return (*this)->state; }
    /// @return the slot
    record::QelShmMP const& record() const { return **this; }

    /// Collects the values of the point. It must refer to a slot.
    /// @return the values, in the order of their chain
    QelShmValueRange values() const { return {*region_, loadLink((*this)->mvs)}; }

    /// Goes up the path on which the scan came to this point. Valid until the scan goes on.
    /// @param level 1 for the top-level point, depth() for the point itself
    /// @return the point at that level, a null handle for any other level
    QEL_EXPORT QelShmMPnt ancestor(unsigned int level) const;

private:
    friend class QelShmPointRange;

    QelShmPoint(QelShmMP const* slot, record::Region const* region, QelShmPointRange const* scan,
                std::uint32_t depth)
        : QelShmMPnt(slot),
          region_(region),
          scan_(scan),
          depth_(depth) {}

    record::Region const* region_ = nullptr;
    QelShmPointRange const* scan_ = nullptr;
    std::uint32_t depth_ = 0;
};

} // namespace shm

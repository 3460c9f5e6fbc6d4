/// @file
/// The reader's fast way from a sensor id to a slot.
#pragma once

#include "reader/MPntPosVisitor.h"
#include "region/SvidTable.h"

#include <array>
#include <cstdint>

namespace shm {

/// Stands beside a position index and answers look-ups in its place while it is current.
///
/// Threads: guarded by whatever guards the index.
class PositionTable {
public:
    /// @param index must outlive the table
    explicit PositionTable(PositionIndex const& index) : index_(&index) {}

    /// The index is about to change; it answers itself until takeOver().
    void invalidate() { isCurrent_ = false; }

    /// Takes over what the index holds now.
    void takeOver();

    /// The position that the index holds for a point, NO_POSITION for an unknown one.
    std::uint32_t find(long long svid) const {
        if (!isCurrent_) {
            return findInIndex(svid);
        }
        auto const number = numbers_.find(svid);
        return number == SvidTable::none ? NO_POSITION : positions_[number];
    }

private:
    std::uint32_t findInIndex(long long svid) const;

    PositionIndex const* index_;
    SvidTable numbers_;
    std::array<std::uint32_t, MP_COUNT> positions_{}; // by number
    bool isCurrent_ = false;
};

} // namespace shm

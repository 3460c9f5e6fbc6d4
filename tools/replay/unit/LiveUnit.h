// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The unit in the shared memory.
#pragma once

#include "tools/replay/csv/RecordingFeed.h"
#include "tools/replay/unit/Structure.h"

#include "domain/eStatus_Bits.h"
#include "writer/QelSharedMemoryWriter.h"

#include <cstdint>
#include <vector>

namespace qel::tools {

/// Owns the region: creates it when constructed, removes it when destroyed. One per machine.
///
/// Threads: bound to one thread.
class LiveUnit {
public:
    /// Creates the region, inactive and empty.
    /// @throws std::runtime_error when that fails
    LiveUnit();

    /// Lays out the first structure, with type codes and every point "On", and activates the region.
    /// @param time of the points' own states, ms since 1970 UTC
    void build(Structure const& structure, std::uint64_t time);

    /// Brings the region in line with another structure. New points get their type codes and are "On".
    /// @return whether anything was added or removed
    bool change(Structure const& structure, std::uint64_t time);

    Structure const& structure() const { return structure_; }

    /// Stores a value.
    /// @return false when the region has no place for it
    bool deliver(Reading const& reading);

    /// Folds all states up to the global one, and gives that.
    eStatus_Bits propagate();

private:
    void introduce(std::vector<PointId> const& points, std::uint64_t time);

    shm::QelSharedMemoryWriter writer_;
    Structure structure_;
};

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The unit in the shared memory.
#pragma once

#include "tools/replay/unit/Structure.h"

#include "domain/eStatus_Bits.h"
#include "writer/QelSharedMemoryWriter.h"

#include <cstdint>
#include <vector>

namespace qel::tools {

/// Creates the region when constructed and removes it when destroyed. One per machine.
///
/// Threads: thread-bound to the thread that made it.
class LiveUnit {
public:
    /// Creates the region, inactive and empty.
    /// @throws std::runtime_error when that fails
    LiveUnit();

    /// Lays out the first structure, sets the type codes, puts every point "On" and activates the region.
    /// @param time of the points' own states, ms since 1970 UTC
    void build(Structure const& structure, std::uint64_t time);

    /// Replaces the structure. New points get their type codes and are "On".
    /// @param time of the new points' own states, ms since 1970 UTC
    /// @return whether anything was added or removed
    bool change(Structure const& structure, std::uint64_t time);

    Structure const& structure() const { return structure_; }

    /// Stores a reading.
    /// @return false if the region has no slot for it
    bool deliver(Reading const& reading);

    /// Folds all states up to the global one.
    /// @return the global state
    eStatus_Bits propagate();

private:
    void introduce(std::vector<PointId> const& points, std::uint64_t time);

    shm::QelSharedMemoryWriter writer_;
    Structure structure_;
};

} // namespace qel::tools

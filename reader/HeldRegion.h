// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Which object a reader has mapped, and whether its writer lives.
#pragma once

#include "reader/NamedRegion.h"
#include "region/QelShmCondition.h"

#include <mutex>
#include <optional>

namespace shm {

/// Compares what a reader holds with what stands under the name. It remembers that the held object was seen locked:
/// from then on it counts as abandoned while it is not. An object that never was locked tells nothing of its writer.
///
/// Threads: thread-safe.
class HeldRegion {
public:
    /// To be called once something was mapped.
    /// @param before,after what stood under the name before and after: it is what was mapped if both are the same
    void take(std::optional<ObjectId> const& before, NamedRegion const& after);

    /// The facts that follow from the name; the others are left as they are by default.
    QelShmRegionFacts compare(NamedRegion const& named);

private:
    std::mutex mutex_; // guards all
    bool isTaken_ = false;
    std::optional<ObjectId> id_;
    bool wasLocked_ = false;
};

} // namespace shm

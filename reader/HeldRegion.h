// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The object that a reader has mapped, and whether its writer lives.
#pragma once

#include "reader/NamedRegion.h"
#include "region/QelShmCondition.h"

#include <mutex>
#include <optional>

namespace shm {

/// Compares the mapped object with the object under the region's name. Once it has seen the mapped object locked, an
/// unlocked one counts as abandoned. An object that was never locked says nothing about its writer.
///
/// Threads: thread-safe.
class HeldRegion {
public:
    /// Notes that a region was mapped, and its object if that is known: if the name led to the same object before
    /// and after.
    /// @param before object under the name before the mapping
    /// @param after  object under the name after the mapping
    void take(std::optional<ObjectId> const& before, NamedRegion const& after);

    /// Compares the mapped object with the one under the name.
    /// @param named the present object under the name
    /// @return isHeld, isNamed, isSame and isAbandoned; the other facts keep their defaults
    QelShmRegionFacts compare(NamedRegion const& named);

private:
    std::mutex mutex_; // guards all
    bool isTaken_ = false;
    std::optional<ObjectId> id_;
    bool wasLocked_ = false;
};

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a process holds of the system.
#pragma once

#include <cstddef>
#include <ostream>

namespace qel::test {

/// Things that are counted before and after, to see that nothing is left behind.
struct ProcessResources {
    std::size_t descriptors = 0; ///< open files
    std::size_t threads = 0;     ///< without the idle workers of GLib's pools
    std::size_t regions = 0;     ///< mappings of the region, also of one whose name is gone

    bool operator==(ProcessResources const& other) const {
        return descriptors == other.descriptors && threads == other.threads && regions == other.regions;
    }
};

std::ostream& operator<<(std::ostream& out, ProcessResources const& resources);

/// Those of this process, as /proc tells.
ProcessResources ownResources();

/// Whether this process has children, running or not yet reaped. Reaps one that has ended.
bool hasChildren();

} // namespace qel::test

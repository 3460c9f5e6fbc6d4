// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Resources of a process.
#pragma once

#include <cstddef>
#include <ostream>

namespace qel::test {

/// Counted before and after, to detect leaks. Reentrant.
struct ProcessResources {
    std::size_t descriptors = 0; ///< open files
    std::size_t threads = 0;     ///< without the idle workers of GLib's pools
    std::size_t regions = 0;     ///< mappings of the region, with or without a name

    bool operator==(ProcessResources const& other) const {
        return descriptors == other.descriptors && threads == other.threads && regions == other.regions;
    }
};

std::ostream& operator<<(std::ostream& out, ProcessResources const& resources);

/// Resources of this process, from /proc.
ProcessResources ownResources();

/// Whether this process has children, running or not reaped. Reaps one that has ended.
bool hasChildren();

} // namespace qel::test

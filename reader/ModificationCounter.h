// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Counts the announced structure changes that no index contains yet.
#pragma once

#include <atomic>
#include <mutex>

namespace shm {

/// Never loses a change: it is 0 only if an index was begun after the last change and then finished. It neither
/// falls below 0 nor wraps.
///
/// Threads: thread-safe. raise() and current() take no lock.
class ModificationCounter {
public:
    /// The counter at the beginning of a rebuild.
    class Snapshot {
    private:
        friend class ModificationCounter;
        Snapshot(unsigned int pending, unsigned int settled) : pending_(pending), settled_(settled) {}

        unsigned int pending_;
        unsigned int settled_;
    };

    constexpr ModificationCounter() = default;

    /// Counts one more change. A counter at its maximum stays there.
    void raise();

    /// A thread that reads 0 also sees what the rebuild wrote before settle() (acquire).
    /// @return the number of changes
    unsigned int current() const { return pending_.load(std::memory_order_acquire); }

    /// To be called before the rebuild reads anything of the structure.
    /// @return the present state, for settle()
    /// @throws std::system_error when the mutex cannot be locked
    Snapshot snapshot() const;

    /// Call it when the index is finished. Without a change since the snapshot the counter becomes 0. Otherwise it
    /// falls by one, but not below 1, so that the next look-up rebuilds the index.
    /// @param before from the beginning of the rebuild
    /// @throws std::system_error when the mutex cannot be locked; the counter does not change then
    void settle(Snapshot const& before);

    /// Call it when an index was begun and not finished. A counter of 0 becomes 1.
    void keepPending();

private:
    std::atomic<unsigned int> pending_{0};
    mutable std::mutex mutex_; // lets one settle() lower the counter at a time; guards settled_
    unsigned int settled_ =
        0; // counts settle(); shows that the counter fell and rose again to the same number
};

/// The counter of the process. It is shared, since the signal's handler does not know for which reader it is called.
inline ModificationCounter modificationCounter;

} // namespace shm

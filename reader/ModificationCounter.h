// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Counts the announced structure changes that no index follows yet.
#pragma once

#include <atomic>
#include <mutex>

namespace shm {

/// Never loses a change: it reads 0 only when some index was begun after the last change and finished. It neither falls
/// below 0 nor wraps.
///
/// Threads: all operations from any thread. raise() and current() take no lock.
class ModificationCounter {
public:
    /// What a rebuild finds when it begins.
    class Snapshot {
    private:
        friend class ModificationCounter;
        Snapshot(unsigned int pending, unsigned int settled) : pending_(pending), settled_(settled) {}

        unsigned int pending_;
        unsigned int settled_;
    };

    constexpr ModificationCounter() = default;

    /// One more change. A counter at its maximum stays there.
    void raise();

    /// The number of changes. What a finished rebuild wrote before settle() is visible to who reads the 0 that it left.
    unsigned int current() const { return pending_.load(std::memory_order_acquire); }

    /// To be taken before the rebuild reads anything of the structure.
    /// @throws std::system_error when its mutex cannot be locked
    Snapshot snapshot() const;

    /// An index that was begun with the snapshot is finished. No change since: 0. Otherwise one less, but not below 1,
    /// so that the next look-up builds the index again.
    /// @throws std::system_error when its mutex cannot be locked; the counter stays then
    void settle(Snapshot const& before);

    /// An index was begun and not finished: a counter of 0 becomes 1.
    void keepPending();

private:
    std::atomic<unsigned int> pending_{0};
    mutable std::mutex mutex_; // lets one settle() lower the counter at a time; guards settled_
    unsigned int settled_ = 0; // tells a number from the same one before others lowered and raised it
};

/// The one of the process: the handler of the signal is given nothing that names the reader it serves.
inline ModificationCounter modificationCounter;

} // namespace shm

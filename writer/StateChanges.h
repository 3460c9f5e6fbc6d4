// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Knows whether states have changed since they were combined last.
#pragma once

#include "domain/eStatus_Bits.h"

#include <atomic>

namespace shm {

/// Combining states is idempotent: while nothing has changed, doing it again stores nothing. So the writer notes each
/// change here, and combines only after one.
///
/// A note is never lost: it is made behind the store of what has changed, and taken before the states are read.
///
/// Threads: note() is thread-safe. The rest is thread-bound to the thread that combines.
class StateChanges {
public:
    /// A state or a list in the region has changed. At first this is noted.
    void note() noexcept { isNoted_.store(true, std::memory_order_release); }

    /// @param stored the root's state. Any other than the last result shows that the region was wiped or overwritten.
    /// @return whether everything that is noted has been combined
    bool areCombinedInto(eStatus_Bits stored) const noexcept {
        return !isNoted_.load(std::memory_order_acquire) && stored == global_;
    }

    /// Takes the note, before the states are read. Whoever fails to combine them notes a change again.
    void take() noexcept { isNoted_.exchange(false, std::memory_order_acquire); }

    /// @param global the global state that all changes were combined into
    void setResult(eStatus_Bits global) noexcept { global_ = global; }

private:
    std::atomic<bool> isNoted_{true};
    eStatus_Bits global_ = eStatus_UndefinedValue;
};
static_assert(std::atomic<bool>::is_always_lock_free);

} // namespace shm

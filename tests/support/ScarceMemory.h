// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Lets memory run out anywhere in the process.
#pragma once

#include "tests/support/Sanitizers.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace qel::test {

/// While the object exists, operator new fails when memory is used up: in the program's own code and, unlike with
/// MemoryRunsOut, in all shared libraries. One object at a time; the program must link qel-scarce-memory. It has no effect
/// under ThreadSanitizer; QEL_SKIP_WITHOUT_SCARCE_MEMORY skips tests there.
///
/// Threads: thread-bound to the thread that made it.
class ScarceMemory {
public:
    /// Only so many allocations succeed in this thread.
    static ScarceMemory afterAllocations(std::size_t allowed);

    /// One allocation fails in this thread, after so many that succeed.
    static ScarceMemory onceAfterAllocations(std::size_t allowed);

    /// Only so many bytes can be allocated in this thread at a time.
    static ScarceMemory ofBytes(std::size_t bytes);

    /// No allocation succeeds in other threads.
    static ScarceMemory inOtherThreads();

    ~ScarceMemory();
    ScarceMemory(ScarceMemory const&) = delete;
    ScarceMemory& operator=(ScarceMemory const&) = delete;

    /// How many allocations this object made fail so far.
    std::size_t failures() const;

private:
    ScarceMemory() = default;
};

} // namespace qel::test

#define QEL_SKIP_WITHOUT_SCARCE_MEMORY()                                                                     \
    if (qel::test::underThreadSanitizer)                                                                     \
    GTEST_SKIP() << "ThreadSanitizer has an operator new of its own"

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Lets a test meet the end of memory anywhere in the process.
#pragma once

#include "tests/support/Sanitizers.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace qel::test {

/// While it lives, operator new fails when memory is used up: for the program's own code and for that of all shared
/// libraries, unlike MemoryRunsOut. One at a time; a program links qel-scarce-memory for it. Without effect under
/// ThreadSanitizer, which has an operator new of its own: tests are skipped there by QEL_SKIP_WITHOUT_SCARCE_MEMORY.
class ScarceMemory {
public:
    /// In this thread only so many allocations succeed.
    static ScarceMemory afterAllocations(std::size_t allowed);

    /// In this thread only the next allocation after so many fails, those behind it succeed.
    static ScarceMemory onceAfterAllocations(std::size_t allowed);

    /// In this thread no more bytes than these can be allocated; memory that is freed meanwhile can be had again.
    static ScarceMemory ofBytes(std::size_t bytes);

    /// In all other threads no allocation succeeds.
    static ScarceMemory inOtherThreads();

    ~ScarceMemory();
    ScarceMemory(ScarceMemory const&) = delete;
    ScarceMemory& operator=(ScarceMemory const&) = delete;

    /// How many allocations have failed so far by what the object stands for.
    std::size_t failures() const;

private:
    ScarceMemory() = default;
};

} // namespace qel::test

#define QEL_SKIP_WITHOUT_SCARCE_MEMORY()                                                                     \
    if (qel::test::underThreadSanitizer)                                                                     \
    GTEST_SKIP() << "ThreadSanitizer has an operator new of its own"

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Counts and breaks what the writer depends on: memory, mutexes, the conversion of a value.
#pragma once

#include <cstddef>

namespace qel::test {

/// Number of allocations by operator new in this thread so far, by the program's own code without shared libraries.
/// Reentrant.
std::size_t allocations();

/// Number of mutexes locked in this thread so far, by the program's own code without shared libraries. Reentrant.
std::size_t locks();

/// While the object exists, only so many allocations by operator new succeed in this thread.
///
/// Threads: thread-bound to the thread that made it.
class MemoryRunsOut {
public:
    explicit MemoryRunsOut(std::size_t allowed);
    ~MemoryRunsOut();
    MemoryRunsOut(MemoryRunsOut const&) = delete;
    MemoryRunsOut& operator=(MemoryRunsOut const&) = delete;
};

/// While the object exists, no mutex can be locked in this thread.
///
/// Threads: thread-bound to the thread that made it.
class MutexesFail {
public:
    MutexesFail();
    ~MutexesFail();
    MutexesFail(MutexesFail const&) = delete;
    MutexesFail& operator=(MutexesFail const&) = delete;
};

/// While the object exists, converting a measured value in this thread throws something that is not a std::exception.
///
/// Threads: thread-bound to the thread that made it.
class ConversionThrowsInt {
public:
    ConversionThrowsInt();
    ~ConversionThrowsInt();
    ConversionThrowsInt(ConversionThrowsInt const&) = delete;
    ConversionThrowsInt& operator=(ConversionThrowsInt const&) = delete;
};

} // namespace qel::test

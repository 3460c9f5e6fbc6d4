// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Lets a test watch and break what lies below the writer: memory, mutexes, the conversion of a value.
#pragma once

#include <cstddef>

namespace qel::test {

/// Number of allocations by operator new from this program's own code (no shared library) in this thread so
/// far.
std::size_t allocations();

/// Number of mutexes that this program's own code (no shared library) has locked in this thread so far.
std::size_t locks();

/// While it lives, an allocation by operator new in this thread fails: after as many as are allowed, every
/// one.
class MemoryRunsOut {
public:
    explicit MemoryRunsOut(std::size_t allowed);
    ~MemoryRunsOut();
    MemoryRunsOut(MemoryRunsOut const&) = delete;
    MemoryRunsOut& operator=(MemoryRunsOut const&) = delete;
};

/// While it lives, no mutex can be locked in this thread.
class MutexesFail {
public:
    MutexesFail();
    ~MutexesFail();
    MutexesFail(MutexesFail const&) = delete;
    MutexesFail& operator=(MutexesFail const&) = delete;
};

/// While it lives, converting a measured value in this thread throws something that is no std::exception.
class ConversionThrowsInt {
public:
    ConversionThrowsInt();
    ~ConversionThrowsInt();
    ConversionThrowsInt(ConversionThrowsInt const&) = delete;
    ConversionThrowsInt& operator=(ConversionThrowsInt const&) = delete;
};

} // namespace qel::test

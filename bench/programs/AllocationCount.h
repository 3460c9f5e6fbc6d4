// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Counts what a program allocates.
#pragma once

#include <cstddef>

namespace bench {

/// Since the program started; a program that links this has every allocation counted, the C library's included.
struct AllocationCount {
    std::size_t allocations; ///< blocks handed out
    std::size_t bytes;       ///< bytes in use
};

AllocationCount allocationCount();

} // namespace bench

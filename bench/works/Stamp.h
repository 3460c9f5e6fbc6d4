// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The clock, and values that carry the time at which they were stored. All of it is reentrant.
#pragma once

#include "bench/support/Plan.h"

#include <chrono>
#include <cstdint>

namespace bench {

/// Time on the clock that all processes share, in ns.
inline std::int64_t now() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// The time as a value's number; a double holds it exactly.
inline double stamp() {
    return static_cast<double>(now());
}

/// The value that travels from a writer to a watching process.
inline Access watched(Plan const& plan) {
    return plan.valueAccesses().front();
}

} // namespace bench

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Waits for the work of another thread or process.
#pragma once

#include <chrono>
#include <thread>

namespace qel::test {

/// Waits until the condition holds. Reentrant.
/// @return false on timeout
template <typename Condition>
bool eventually(Condition const& condition, std::chrono::milliseconds timeout = std::chrono::seconds(20)) {
    auto const deadline = std::chrono::steady_clock::now() + timeout;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

} // namespace qel::test

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Waits for what another thread or process brings about.
#pragma once

#include <chrono>
#include <thread>

namespace qel::test {

/// True as soon as the condition holds, false when it did not come to that in time.
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

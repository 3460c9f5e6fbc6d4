// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Runs code in a forked child of the test program.
#pragma once

#include <chrono>
#include <functional>
#include <optional>

namespace qel::test {

/// Forks. The child runs the body and ends with its result by _exit(), unless the body calls std::exit().
/// @return the child's exit status, 128 + n if signal n ended it; nothing if it was killed after the timeout
std::optional<int> inForkedChild(std::function<int()> const& body,
                                 std::chrono::milliseconds timeout = std::chrono::seconds(20));

} // namespace qel::test

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What happens in a forked child of the test program.
#pragma once

#include <chrono>
#include <functional>
#include <optional>

namespace qel::test {

/// Forks; the child runs the body and ends with its result, without further ado unless the body calls std::exit.
/// @return the child's exit status, 128 + n when signal n ended it; nothing when it still ran after the time and had
/// to be killed
std::optional<int> inForkedChild(std::function<int()> const& body,
                                 std::chrono::milliseconds timeout = std::chrono::seconds(20));

} // namespace qel::test

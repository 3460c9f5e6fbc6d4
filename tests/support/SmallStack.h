// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Runs code on the small stack that a thread of the unit has.
#pragma once

#include "tests/support/Sanitizers.h"

#include <cstddef>
#include <functional>

namespace qel::test {

/// Sanitizers widen every frame.
constexpr std::size_t stackWidening = underAddressSanitizer || underThreadSanitizer ? 16 : 1;

/// 128 KiB in an ordinary build.
constexpr std::size_t smallStack = stackWidening * 128 * 1024;

/// Runs an action in a thread with a stack of smallStack bytes and waits for its end. A stack overflow hits the guard
/// page and ends the process. Reentrant.
/// @throws std::system_error if the thread cannot be started
void runOnSmallStack(std::function<void()> const& action);

} // namespace qel::test

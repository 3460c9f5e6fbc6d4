// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Runs code on the small stack that a thread of the unit has.
#pragma once

#include <cstddef>
#include <functional>

namespace qel::test {

// GCC tells of a sanitizer by macros, Clang by a query.
#ifndef __has_feature
#define __has_feature(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || __has_feature(address_sanitizer) ||     \
    __has_feature(thread_sanitizer)
constexpr std::size_t stackWidening = 16; // sanitizers widen every frame
#else
constexpr std::size_t stackWidening = 1;
#endif

/// 128 KiB in an ordinary build.
constexpr std::size_t smallStack = stackWidening * 128 * 1024;

/// Calls an action in a thread with a stack of smallStack bytes and waits for its end. An overflow meets the guard
/// page of the stack and ends the process.
/// Throws std::system_error when there is no thread to be had.
void runOnSmallStack(std::function<void()> const& action);

} // namespace qel::test

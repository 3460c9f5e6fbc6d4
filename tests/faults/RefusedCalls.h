// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A kernel that refuses what it is asked for, with an error of one's choice.
#pragma once

#include <functional>

namespace qel::test {

enum class Refused {
    NewThreads,   ///< and processes
    OpeningFiles, ///< shared-memory objects among them
};

/// Runs an action on a thread of its own, for which the kernel refuses this with that error; so it does for threads that
/// the action starts. Throws what the action throws, and std::system_error when the kernel cannot be told so.
/// Reentrant.
void withRefused(Refused what, int error, std::function<void()> const& action);

} // namespace qel::test

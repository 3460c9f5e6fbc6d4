// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a piece of code asks of the kernel: system calls and page faults.
#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>

namespace qel::test {

/// What the calling thread did while it ran a body.
struct KernelContact {
    std::uint64_t systemCalls = 0;
    int lastSystemCall = -1; ///< its number; -1 for none
    std::uint64_t pageFaults = 0;
};

/// Prints what is not zero.
std::ostream& operator<<(std::ostream& stream, KernelContact const& contact);

/// Refuses the calling thread all system calls for the rest of its life, but those that end a process, write to a file
/// and ask for the resources used. A refused call is counted and returns ENOSYS; a heap that cannot grow may end
/// the process. So call it in a forked child (inForkedChild()).
///
/// Threads: thread-bound to the calling thread, and once per process.
/// @return whether the machine allows it; an emulated processor and some containers do not
bool refuseSystemCalls();

/// Runs a body in a thread that refuseSystemCalls() was called in.
///
/// Threads: thread-bound to that thread.
KernelContact kernelContactOf(std::function<void()> const& body);

} // namespace qel::test

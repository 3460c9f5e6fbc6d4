// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// System calls that fail although nothing is wrong with the system.
#pragma once

namespace qel::test {

enum class Call { ShmOpen, ShmUnlink, Fstat, Ftruncate, PosixFallocate, Mmap, Munmap, Close, Fcntl };

/// Lets the next calls of one function fail, those of the library and of the test alike, for as long as it
/// lives. One at a time; a program links qel-failing-calls for it. A close that fails has closed all the same, as
/// Linux does.
///
/// Threads: thread-bound to the thread that made it.
class FailingCall {
public:
    /// @param error what errno becomes, or the result of posix_fallocate; 0 for a shm_unlink that removes nothing and says
    ///              that it succeeded
    /// @param times how many calls fail; those after them succeed
    /// @param after how many calls succeed before
    FailingCall(Call call, int error, int times = 1, int after = 0);
    ~FailingCall();
    FailingCall(FailingCall const&) = delete;
    FailingCall& operator=(FailingCall const&) = delete;

    /// How many calls are still to fail.
    static int left();
};

} // namespace qel::test

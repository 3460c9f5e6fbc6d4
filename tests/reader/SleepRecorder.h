// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Lets time pass at once.
#pragma once

#include <chrono>
#include <cstddef>

namespace qel::test {

/// While one lives, std::this_thread::sleep_for returns at once on every thread of this program and is only
/// counted, so that waits of many minutes can be tested by their number. Without one the program sleeps as
/// usual.
///
/// Threads: thread-safe; one object at a time.
class SleepRecorder {
public:
    SleepRecorder();
    ~SleepRecorder();
    SleepRecorder(SleepRecorder const&) = delete;
    SleepRecorder& operator=(SleepRecorder const&) = delete;

    /// How many sleeps of exactly that length there were.
    static std::size_t count(std::chrono::nanoseconds length);
};

} // namespace qel::test

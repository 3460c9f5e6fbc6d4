// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Doing something again and again until the user ends it.
#pragma once

#include <chrono>

#include <csignal>

namespace qel::tools {

/// Keeps SIGINT, SIGTERM and SIGHUP from ending the process as long as it lives, so that they end a wait instead.
/// Threads: bound to the main thread of a process without others.
class Pace {
public:
    Pace();
    ~Pace();
    Pace(Pace const&) = delete;
    Pace& operator=(Pace const&) = delete;

    /// Waits until this moment; at once when it has passed.
    /// @return false when one of the signals has come
    bool waitUntil(std::chrono::steady_clock::time_point moment) const;

private:
    sigset_t signals_{};
    sigset_t before_{};
};

/// A number of seconds as a duration. Any thread.
std::chrono::steady_clock::duration secondsOf(double seconds);

} // namespace qel::tools

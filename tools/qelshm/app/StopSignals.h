// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Waiting until the user stops the program.
#pragma once

#include "inspect/image/FileDescriptor.h"

#include <chrono>

#include <csignal>

namespace qel::tools {

/// While it lives, SIGINT, SIGTERM and SIGHUP end a wait instead of the process, so that files and the terminal are
/// left in order.
///
/// Threads: thread-bound to the thread that made it; all others must block these signals.
class StopSignals {
public:
    using Moment = std::chrono::steady_clock::time_point;

    /// @throws std::system_error
    StopSignals();
    /// Discards signals that have come and restores the signal mask. If any has come, later ones have no effect on this
    /// process: it is about to end in order, and some programs send the signal twice.
    ~StopSignals();
    StopSignals(StopSignals const&) = delete;
    StopSignals& operator=(StopSignals const&) = delete;

    /// Waits until the moment, a stop signal, or until the reader of an output is gone.
    /// @param output descriptor to observe; none if negative
    /// @return whether to stop
    bool waitUntil(Moment moment, int output = -1) const;

    /// Waits until the moment, a stop signal, input or another signal, such as that of a resized terminal.
    /// @param input descriptor to observe
    /// @return whether to stop: a stop signal, or the input has ended
    bool waitForInput(Moment moment, int input) const;

private:
    struct Wake;
    Wake wait(Moment moment, int descriptor, short events) const;

    sigset_t before_{};
    inspect::FileDescriptor signals_;
};

} // namespace qel::tools

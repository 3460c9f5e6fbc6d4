// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Signals that end a watch.
#pragma once

#include "inspect/image/FileDescriptor.h"

#include <chrono>

#include <csignal>

namespace qel::watch {

/// While it lives, SIGINT, SIGTERM and SIGHUP do not end the thread's process but a wait, so that the terminal can be
/// given back in order.
///
/// Threads: bound to the thread that made it; others must have these signals blocked.
class StopSignals {
public:
    /// Throws std::system_error.
    StopSignals();
    /// Signals that have come are forgotten.
    ~StopSignals();
    StopSignals(StopSignals const&) = delete;
    StopSignals& operator=(StopSignals const&) = delete;

    /// Waits for a time, or until one of the signals comes, another signal is handled, or the descriptor has input.
    /// @param descriptor      of standard input or output
    /// @param isInputAwaited  false to look for nothing but that the other end is gone
    /// @return whether to stop: one of the signals, or the other end of the descriptor is gone
    bool wait(std::chrono::milliseconds time, int descriptor, bool isInputAwaited) const;

private:
    sigset_t before_{};
    inspect::FileDescriptor signals_;
};

} // namespace qel::watch

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Signals of the system on the main loop.
#pragma once

#include <glib.h>

#include <functional>

namespace qel::tools {

/// While it lives, the default main context calls a function for each arrival of a signal, instead of what the signal
/// does by default. Afterwards the signal has no effect for the rest of the process: a process that ends removes what it
/// has made, however many signals arrive meanwhile.
///
/// Threads: thread-bound to the thread that runs the default main context.
class SignalSource {
public:
    /// @param number    SIGHUP, SIGINT, SIGTERM, SIGUSR1, SIGUSR2 or SIGWINCH
    /// @param onArrival must not throw
    SignalSource(int number, std::function<void()> onArrival);
    ~SignalSource();
    SignalSource(SignalSource const&) = delete;
    SignalSource& operator=(SignalSource const&) = delete;

private:
    std::function<void()> onArrival_;
    guint source_;
};

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A terminal in order after a crash.
#pragma once

#include <array>
#include <string>

#include <csignal>
#include <termios.h>

namespace qel::tools {

/// While it lives, a signal that ends the process with a core dump (SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL, and SIGQUIT,
/// which Ctrl-\ sends) first writes a text to a terminal and restores its settings. Then it does what it did before:
/// it ends the process. The handler runs on a stack of its own, so it also works when the stack is used up. Signals that
/// are ignored stay ignored.
///
/// Threads: thread-bound to the thread that made it. One object per process.
class FatalSignals {
public:
    /// @param terminal descriptor of the terminal
    /// @param settings that the terminal shall have again
    /// @param text     control sequences that take the terminal back; at most 500 bytes of them are kept
    FatalSignals(int terminal, termios const& settings, std::string const& text);
    ~FatalSignals();
    FatalSignals(FatalSignals const&) = delete;
    FatalSignals& operator=(FatalSignals const&) = delete;

private:
    stack_t stackBefore_{};
    std::array<char, 32768> stack_{};
};

} // namespace qel::tools

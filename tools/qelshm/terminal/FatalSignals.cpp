// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/FatalSignals.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>

namespace qel::tools {

namespace {

constexpr std::array<int, 6> fatalSignals{SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGQUIT};

/// All that the handler needs: it may neither allocate nor lock.
struct Restoration {
    int terminal;
    termios settings;
    std::array<char, 500> text;
    std::size_t size;
    std::array<struct sigaction, fatalSignals.size()> before;
};

// A handler has no object of its own.
Restoration restoration{};

} // namespace

/// Calls functions alone that are safe in a handler.
extern "C" void qelRestoreTerminal(int number) {
    auto const written = ::write(restoration.terminal, restoration.text.data(), restoration.size);
    static_cast<void>(written); // nobody is left to be told
    ::tcsetattr(restoration.terminal, TCSANOW, &restoration.settings);
    for (std::size_t index = 0; index < fatalSignals.size(); ++index) {
        if (fatalSignals[index] == number) {
            ::sigaction(number, &restoration.before[index], nullptr);
        }
    }
    static_cast<void>(::raise(number)); // blocked until this function returns
}

FatalSignals::FatalSignals(int terminal, termios const& settings, std::string const& text) {
    restoration.terminal = terminal;
    restoration.settings = settings;
    restoration.size = std::min(text.size(), restoration.text.size());
    std::copy_n(text.begin(), restoration.size, restoration.text.begin());
    stack_t own{};
    own.ss_sp = stack_.data();
    own.ss_size = stack_.size();
    ::sigaltstack(&own, &stackBefore_);
    struct sigaction handler = {};
    handler.sa_handler = qelRestoreTerminal;
    handler.sa_flags = SA_ONSTACK;
    ::sigemptyset(&handler.sa_mask);
    for (std::size_t index = 0; index < fatalSignals.size(); ++index) {
        auto& before = restoration.before.at(index);
        ::sigaction(fatalSignals.at(index), nullptr, &before);
        if (before.sa_handler != SIG_IGN) {
            ::sigaction(fatalSignals.at(index), &handler, nullptr);
        }
    }
}

FatalSignals::~FatalSignals() {
    for (std::size_t index = 0; index < fatalSignals.size(); ++index) {
        ::sigaction(fatalSignals.at(index), &restoration.before.at(index), nullptr);
    }
    ::sigaltstack(&stackBefore_, nullptr);
}

} // namespace qel::tools

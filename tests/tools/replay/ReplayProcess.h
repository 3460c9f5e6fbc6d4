// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A running qel-replay.
#pragma once

#include "tests/support/ChildProcess.h"

#include <csignal>
#include <string>
#include <vector>

namespace qel::test {

/// Ends in order with the object, so that it takes its region along.
///
/// Threads: not shared.
class ReplayProcess : public ChildProcess {
public:
    explicit ReplayProcess(std::vector<std::string> const& arguments) : ChildProcess(command(arguments)) {}

    ~ReplayProcess() {
        signal(SIGTERM);
        wait();
    }
    ReplayProcess(ReplayProcess const&) = delete;
    ReplayProcess& operator=(ReplayProcess const&) = delete;

    /// Program and arguments.
    static std::vector<std::string> command(std::vector<std::string> const& arguments) {
        std::vector<std::string> words{QEL_REPLAY};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return words;
    }
};

} // namespace qel::test

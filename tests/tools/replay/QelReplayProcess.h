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

/// Ends by SIGTERM with the object, so that it removes its region.
///
/// Threads: reentrant.
class QelReplayProcess : public ChildProcess {
public:
    explicit QelReplayProcess(std::vector<std::string> const& arguments) : ChildProcess(command(arguments)) {}

    ~QelReplayProcess() {
        signal(SIGTERM);
        wait();
    }
    QelReplayProcess(QelReplayProcess const&) = delete;
    QelReplayProcess& operator=(QelReplayProcess const&) = delete;

    /// Program and arguments.
    static std::vector<std::string> command(std::vector<std::string> const& arguments) {
        std::vector<std::string> words{QEL_REPLAY};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return words;
    }
};

} // namespace qel::test

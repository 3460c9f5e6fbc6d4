// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A process of our own.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace bench {

/// Starts a program and ends it when the object goes. Throws std::system_error when it cannot be started.
class Process {
public:
    /// @param arguments the program, looked for in PATH, and its arguments; it runs without output
    explicit Process(std::vector<std::string> arguments);
    ~Process();
    Process(Process const&) = delete;
    Process& operator=(Process const&) = delete;

    pid_t id() const { return pid_; }
    bool running() const;

    /// Blocks until the program has ended.
    /// @return its exit status, or the number of the signal that ended it
    int exitStatus() const;

    /// Gives the program ten seconds to end by itself.
    void waitForEnd() const;

private:
    pid_t pid_ = -1;
};

/// Path of the program that runs.
std::string ownProgram();

} // namespace bench

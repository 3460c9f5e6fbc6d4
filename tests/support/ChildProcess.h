// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A program that a test starts and talks to.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace qel::test {

/// The command line for a program of this build: if it is for a foreign processor, the emulator comes first.
std::vector<std::string> ownProgram(std::vector<std::string> const& words);

/// A child process with pipes to its standard input and output. Standard error is the test's own, or merged into the
/// output. The destructor kills and reaps the process.
///
/// Threads: reentrant.
class ChildProcess {
public:
    enum class Errors { Inherit, IntoOutput };

    static constexpr std::chrono::milliseconds patience{30000};

    /// @throws std::system_error if the program cannot be started
    explicit ChildProcess(std::vector<std::string> const& arguments, Errors errors = Errors::Inherit);
    ~ChildProcess();
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;

    pid_t pid() const { return pid_; }

    /// @return the next line without its end; nothing at the end of the output or on timeout
    std::optional<std::string> readLine(std::chrono::milliseconds timeout = patience);

    /// Reads lines until one contains the text; that line is lastLine().
    /// @return false at the end of the output or on timeout
    bool readUntil(std::string const& text, std::chrono::milliseconds timeout = patience);
    std::string const& lastLine() const { return lastLine_; }

    /// @return the rest of the output
    std::string readAll(std::chrono::milliseconds timeout = patience);

    /// @throws std::system_error if the child has closed its input or ended
    void writeLine(std::string const& line) const;
    void closeInput();

    void signal(int number) const;

    /// @return exit status, 128 + n if signal n ended it; nothing on timeout
    std::optional<int> wait(std::chrono::milliseconds timeout = patience);

private:
    bool fill(std::chrono::steady_clock::time_point deadline);

    pid_t pid_ = -1;
    int input_ = -1;
    int output_ = -1;
    std::string buffer_;
    std::string lastLine_;
    std::optional<int> status_;
};

} // namespace qel::test

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

/// The words to start a program of this build by: where it is for a foreign processor, an emulator goes before it.
std::vector<std::string> ownProgram(std::vector<std::string> const& words);

/// A child process whose standard input and output the test holds; standard error is the test's own unless it
/// is merged into the output. Killed and reaped at the latest when the object goes.
///
/// Threads: not shared.
class ChildProcess {
public:
    enum class Errors { Inherit, IntoOutput };

    static constexpr std::chrono::milliseconds patience{30000};

    /// Throws std::system_error when the program cannot be started.
    explicit ChildProcess(std::vector<std::string> const& arguments, Errors errors = Errors::Inherit);
    ~ChildProcess();
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;

    pid_t pid() const { return pid_; }

    /// The next line without its end; nothing at the end of the output or when none came in time.
    std::optional<std::string> readLine(std::chrono::milliseconds timeout = patience);

    /// Reads lines until one contains the text; false when none came in time. The line is in lastLine().
    bool readUntil(std::string const& text, std::chrono::milliseconds timeout = patience);
    std::string const& lastLine() const { return lastLine_; }

    /// All that is left of the output, up to its end.
    std::string readAll(std::chrono::milliseconds timeout = patience);

    /// Throws std::system_error when the child has closed its input or ended.
    void writeLine(std::string const& line) const;
    void closeInput();

    void signal(int number) const;

    /// Exit status, 128 + n when signal n ended it; nothing when it still ran after the time.
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

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A program on a terminal of its own.
#pragma once

#include <sys/types.h>
#include <termios.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace qel::test {

/// A child process whose standard input, output and errors are a pseudo terminal of 24 lines of 120
/// characters. Killed and reaped at the latest when the object goes.
///
/// Threads: reentrant.
class Terminal {
public:
    /// @param name what TERM says
    Terminal(std::vector<std::string> const& arguments, std::string const& name);
    ~Terminal();
    Terminal(Terminal const&) = delete;
    Terminal& operator=(Terminal const&) = delete;

    /// Reads until the text has been written, since the start or the last find; false when it was not in
    /// time.
    bool readUntil(std::string const& text, std::chrono::milliseconds timeout = std::chrono::seconds(30));

    void type(std::string const& keys) const;
    void resize(unsigned short lines, unsigned short columns) const;
    void signal(int number) const;

    /// Exit status, 128 + n when signal n ended it; nothing when it still ran after the time.
    std::optional<int> wait(std::chrono::milliseconds timeout = std::chrono::seconds(30));

    /// Whether the terminal echoes and takes whole lines, as before the program took it over.
    bool isAsBefore() const;

private:
    bool fill();

    int terminal_ = -1;
    int programSide_ = -1; // kept open, so that the terminal can still be asked when the program has ended
    pid_t pid_ = -1;
    std::string output_;
    std::optional<int> status_;
};

} // namespace qel::test

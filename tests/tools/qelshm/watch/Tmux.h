// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A terminal whose screen a test can read.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace qel::test {

/// A shell in a terminal multiplexer of its own: server, socket and all end with the object.
///
/// Threads: reentrant.
class Tmux {
public:
    /// Starts a screen of that size with a shell that shows "shell> ".
    /// @throws std::runtime_error when it does not start
    Tmux(int columns, int lines);
    ~Tmux();
    Tmux(Tmux const&) = delete;
    Tmux& operator=(Tmux const&) = delete;

    /// Types text, or presses keys by the multiplexer's names: "Enter", "Down", "C-z".
    void type(std::string const& text) const;
    void press(std::vector<std::string> const& keys) const;

    void resize(int columns, int lines) const;

    /// What the screen shows, a line each, without blanks at their ends.
    std::string screen() const;

    /// The same with its colours and attributes as control sequences.
    std::string colouredScreen() const;

    /// Waits until the screen shows the text, or meets a condition; false when it did not in time.
    bool shows(std::string const& text) const;
    bool becomes(std::function<bool(std::string const&)> const& condition,
                 std::chrono::seconds timeout = std::chrono::seconds(20)) const;

    /// A fact of the terminal by the multiplexer's name: "cursor_flag", "alternate_on".
    std::string fact(std::string const& name) const;

private:
    std::string run(std::vector<std::string> const& arguments) const;

    std::string directory_;
};

} // namespace qel::test

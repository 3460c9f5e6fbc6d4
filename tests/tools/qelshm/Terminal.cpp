// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/tools/qelshm/Terminal.h"

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utmp.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>

namespace qel::test {

namespace {

using Clock = std::chrono::steady_clock;

} // namespace

Terminal::Terminal(std::vector<std::string> const& arguments, std::string const& name) {
    winsize size{};
    size.ws_row = 24;
    size.ws_col = 120;
    if (::openpty(&terminal_, &programSide_, nullptr, nullptr, &size) != 0) {
        throw std::system_error(errno, std::generic_category(), "openpty");
    }
    std::vector<std::string> words = arguments;
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (auto& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    pid_ = ::fork();
    if (pid_ == 0) {
        ::setenv("TERM", name.c_str(), 1);
        ::setenv("LC_ALL", "C.UTF-8", 1);
        ::close(terminal_);
        ::login_tty(programSide_);
        ::execv(argv.front(), argv.data());
        ::_exit(127);
    }
}

Terminal::~Terminal() {
    if (!status_) {
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
    }
    ::close(terminal_);
    ::close(programSide_);
}

// False when there was nothing to read for a moment.
bool Terminal::fill() {
    constexpr int momentMs = 20;
    pollfd waiting{terminal_, POLLIN, 0};
    std::array<char, 4096> block{};
    if (::poll(&waiting, 1, momentMs) <= 0) {
        return false;
    }
    auto const size = ::read(terminal_, block.data(), block.size());
    if (size <= 0) {
        return false;
    }
    output_.append(block.data(), static_cast<std::size_t>(size));
    return true;
}

bool Terminal::readUntil(std::string const& text, std::chrono::milliseconds timeout) {
    for (auto const deadline = Clock::now() + timeout; Clock::now() < deadline; fill()) {
        auto const found = output_.find(text);
        if (found != std::string::npos) {
            output_.erase(0, found + text.size());
            return true;
        }
    }
    return false;
}

void Terminal::type(std::string const& keys) const {
    if (::write(terminal_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
        throw std::system_error(errno, std::generic_category(), "write");
    }
}

void Terminal::resize(unsigned short lines, unsigned short columns) const {
    winsize size{};
    size.ws_row = lines;
    size.ws_col = columns;
    ::ioctl(terminal_, TIOCSWINSZ, &size);
}

void Terminal::signal(int number) const {
    ::kill(pid_, number);
}

std::optional<int> Terminal::wait(std::chrono::milliseconds timeout) {
    for (auto const deadline = Clock::now() + timeout; !status_ && Clock::now() < deadline;) {
        fill(); // a full terminal would hold the program up
        int status = 0;
        if (::waitpid(pid_, &status, WNOHANG) == pid_) {
            status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        }
    }
    return status_;
}

bool Terminal::isAsBefore() const {
    termios settings{};
    if (::tcgetattr(programSide_, &settings) != 0) {
        throw std::system_error(errno, std::generic_category(), "tcgetattr");
    }
    return (settings.c_lflag & (ECHO | ICANON)) == (ECHO | ICANON);
}

} // namespace qel::test

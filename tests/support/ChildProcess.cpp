// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <memory>
#include <system_error>
#include <thread>

extern char**
    environ; // NOLINT(readability-redundant-declaration): POSIX leaves the declaration to the program

namespace qel::test {

namespace {

void check(int error, char const* step) {
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), step);
    }
}

std::array<int, 2> makePipe() {
    std::array<int, 2> ends{};
    check(::pipe2(ends.data(), O_CLOEXEC) == 0 ? 0 : errno, "pipe2");
    return ends;
}

// What a child reads from: unlike with a pipe, writing to one that has died is an error here, no deadly
// signal.
std::array<int, 2> makeInput() {
    std::array<int, 2> ends{};
    check(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0 ? 0 : errno, "socketpair");
    return ends;
}

class FileActions {
public:
    FileActions() { check(::posix_spawn_file_actions_init(&actions_), "posix_spawn_file_actions_init"); }
    ~FileActions() { ::posix_spawn_file_actions_destroy(&actions_); }
    FileActions(FileActions const&) = delete;
    FileActions& operator=(FileActions const&) = delete;

    void duplicate(int from, int to) {
        check(::posix_spawn_file_actions_adddup2(&actions_, from, to), "posix_spawn_file_actions_adddup2");
    }
    posix_spawn_file_actions_t const* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

} // namespace

std::vector<std::string> ownProgram(std::vector<std::string> const& words) {
    std::vector<std::string> command{QEL_TEST_EMULATOR};
    command.insert(command.end(), words.begin(), words.end());
    return command;
}

ChildProcess::ChildProcess(std::vector<std::string> const& arguments, Errors errors) {
    auto const toChild = makeInput();
    auto const fromChild = makePipe();
    FileActions actions;
    actions.duplicate(toChild[0], STDIN_FILENO);
    actions.duplicate(fromChild[1], STDOUT_FILENO);
    if (errors == Errors::IntoOutput) {
        actions.duplicate(fromChild[1], STDERR_FILENO);
    }

    std::vector<std::string> words = arguments;
    std::vector<char*> argv;
    std::transform(words.begin(), words.end(), std::back_inserter(argv),
                   [](std::string& word) { return word.data(); });
    argv.push_back(nullptr);
    int const error = ::posix_spawnp(&pid_, argv.front(), actions.get(), nullptr, argv.data(), environ);
    ::close(toChild[0]);
    ::close(fromChild[1]);
    input_ = toChild[1];
    output_ = fromChild[0];
    if (error != 0) {
        closeInput();
        ::close(output_);
        check(error, arguments.front().c_str());
    }
}

ChildProcess::~ChildProcess() {
    closeInput();
    if (!status_ && !wait(std::chrono::milliseconds(0))) {
        signal(SIGKILL);
        wait();
    }
    ::close(output_);
}

bool ChildProcess::fill(std::chrono::steady_clock::time_point deadline) {
    for (;;) {
        auto const left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd waiting{output_, POLLIN, 0};
        int const ready = ::poll(&waiting, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        if (ready <= 0) {
            return false;
        }
        std::array<char, 4096> chunk{};
        auto const count = ::read(output_, chunk.data(), chunk.size());
        if (count > 0) {
            buffer_.append(chunk.data(), static_cast<std::size_t>(count));
        }
        return count > 0;
    }
}

std::optional<std::string> ChildProcess::readLine(std::chrono::milliseconds timeout) {
    auto const deadline = std::chrono::steady_clock::now() + timeout;
    auto end = buffer_.find('\n');
    while (end == std::string::npos) {
        if (!fill(deadline)) {
            return std::nullopt;
        }
        end = buffer_.find('\n');
    }
    lastLine_ = buffer_.substr(0, end);
    buffer_.erase(0, end + 1);
    return lastLine_;
}

bool ChildProcess::readUntil(std::string const& text, std::chrono::milliseconds timeout) {
    auto const deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        auto const left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        auto const line = readLine(std::max(left, std::chrono::milliseconds(0)));
        if (!line) {
            return false;
        }
        if (line->find(text) != std::string::npos) {
            return true;
        }
    }
}

std::string ChildProcess::readAll(std::chrono::milliseconds timeout) {
    auto const deadline = std::chrono::steady_clock::now() + timeout;
    while (fill(deadline)) {
    }
    std::string all;
    all.swap(buffer_);
    return all;
}

void ChildProcess::writeLine(std::string const& line) const {
    std::string const text = line + '\n';
    for (std::size_t written = 0; written < text.size();) {
        auto const count = ::send(input_, text.data() + written, text.size() - written, MSG_NOSIGNAL);
        check(count > 0 || errno == EINTR ? 0 : errno, "send");
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

void ChildProcess::closeInput() {
    if (input_ >= 0) {
        ::close(input_);
        input_ = -1;
    }
}

void ChildProcess::signal(int number) const {
    if (!status_) {
        ::kill(pid_, number);
    }
}

std::optional<int> ChildProcess::wait(std::chrono::milliseconds timeout) {
    auto const deadline = std::chrono::steady_clock::now() + timeout;
    while (!status_) {
        int status = 0;
        pid_t const ended = ::waitpid(pid_, &status, WNOHANG);
        if (ended == pid_) {
            status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        } else if (std::chrono::steady_clock::now() >= deadline) {
            return std::nullopt;
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }
    return status_;
}

} // namespace qel::test

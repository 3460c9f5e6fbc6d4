// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/ForkedChild.h"

#include "tests/support/Eventually.h"

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace qel::test {

std::optional<int> inForkedChild(std::function<int()> const& body, std::chrono::milliseconds timeout) {
    pid_t const child = ::fork();
    if (child < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (child == 0) {
        ::_exit(body());
    }
    int status = 0;
    bool const ended = eventually([&] { return ::waitpid(child, &status, WNOHANG) == child; }, timeout);
    if (!ended) {
        ::kill(child, SIGKILL);
        ::waitpid(child, &status, 0);
        return std::nullopt;
    }
    constexpr int signalled = 128;
    return WIFEXITED(status) ? WEXITSTATUS(status) : signalled + WTERMSIG(status);
}

} // namespace qel::test

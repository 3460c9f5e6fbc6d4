// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/support/Process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <system_error>
#include <thread>

namespace bench {

Process::Process(std::vector<std::string> arguments) {
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (auto& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    int const status = posix_spawnp(&pid_, pointers.front(), &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (status != 0) {
        throw std::system_error(status, std::generic_category(), "cannot start " + arguments.front());
    }
}

Process::~Process() {
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
}

bool Process::running() const {
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == 0;
}

int Process::exitStatus() const {
    siginfo_t info{};
    while (waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOWAIT) != 0) { // a signal came
    }
    return info.si_status;
}

void Process::waitForEnd() const {
    constexpr int attempts = 10000;
    for (int attempt = 0; attempt < attempts && running(); ++attempt) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

std::string ownProgram() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

} // namespace bench

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/stream/CommandSink.h"

#include "tools/common/TimeText.h"
#include "tools/qelshm/stream/PlainText.h"

#include "format/KeyTable.h"
#include "format/StateName.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <string_view>
#include <utility>

namespace qel::stream {

namespace {

constexpr std::string_view prefix = "QELSHM_";

std::vector<std::string> variablesOf(Report const& report, Change const& change) {
    auto const variable = [](std::string_view name, std::string_view value) {
        return std::string(prefix).append(name).append("=").append(value);
    };
    auto const unit =
        change.value ? shm::keyUnit(report.structure.values()[*change.value].key) : std::string_view();
    return {variable("NAME", change.path),
            variable("POINT", report.structure.points()[change.point].path),
            variable("KEY", change.key),
            variable("VALUE", change.value ? plainNumber(change.number, change.state) : ""),
            variable("UNIT", unit),
            variable("STATE", shm::stateName(change.state)),
            variable("OLD_STATE", shm::stateName(change.before)),
            variable("TIME", change.at == 0 ? "" : tools::momentText(change.at))};
}

/// What the command inherits, without the variables of an outer command.
std::vector<char*> environmentOf(std::vector<std::string> const& added) {
    std::vector<char*> environment;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        if (std::strncmp(*entry, prefix.data(), prefix.size()) != 0) {
            environment.push_back(*entry);
        }
    }
    for (auto const& entry : added) {
        environment.push_back(const_cast<char*>(
            entry.c_str())); // NOLINT(cppcoreguidelines-pro-type-const-cast): posix_spawn changes nothing
    }
    environment.push_back(nullptr);
    return environment;
}

/// How the command starts: signals as in a new shell, no input, output beside the errors.
class SpawnSettings {
public:
    SpawnSettings() {
        posix_spawn_file_actions_init(&files_);
        posix_spawn_file_actions_addopen(&files_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&files_, STDERR_FILENO, STDOUT_FILENO);
        posix_spawnattr_init(&attributes_);
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&attributes_, &none);
        sigset_t ignored;
        sigemptyset(&ignored);
        sigaddset(&ignored, SIGPIPE);
        posix_spawnattr_setsigdefault(&attributes_, &ignored);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnSettings() {
        posix_spawnattr_destroy(&attributes_);
        posix_spawn_file_actions_destroy(&files_);
    }
    SpawnSettings(SpawnSettings const&) = delete;
    SpawnSettings& operator=(SpawnSettings const&) = delete;

    posix_spawn_file_actions_t const* files() const { return &files_; }
    posix_spawnattr_t const* attributes() const { return &attributes_; }

private:
    posix_spawn_file_actions_t files_{};
    posix_spawnattr_t attributes_{};
};

} // namespace

CommandSink::CommandSink(std::vector<std::string> command, std::function<void(std::string const&)> tell)
    : command_(std::move(command)),
      tell_(std::move(tell)) {}

void CommandSink::take(Report const& report) {
    for (auto const& change : report.changes) {
        if (!change.isStateChange()) {
            continue;
        }
        if (waiting_.size() < mostWaiting) {
            waiting_.push_back(variablesOf(report, change));
        } else if (dropped_++ == 0) {
            tell_(command_.front() + " is too slow: " + std::to_string(mostWaiting) +
                  " changes wait for it; further ones are dropped");
        }
    }
    work();
}

bool CommandSink::work() {
    reap();
    while (running_ == 0 && !waiting_.empty()) {
        start(waiting_.front());
        waiting_.pop_front();
    }
    if (dropped_ != 0 && waiting_.size() <= mostWaiting / 2) {
        tellDropped();
    }
    return running_ != 0 || !waiting_.empty();
}

void CommandSink::end() {
    dropped_ += waiting_.size();
    waiting_.clear();
    tellDropped();
}

void CommandSink::tellDropped() {
    if (dropped_ != 0) {
        tell_(command_.front() + " was not run for " + std::to_string(dropped_) +
              (dropped_ == 1 ? " change" : " changes"));
        dropped_ = 0;
    }
}

void CommandSink::start(Environment const& environment) {
    SpawnSettings const settings;
    std::vector<char*> arguments;
    arguments.reserve(command_.size() + 1);
    for (auto& argument : command_) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    auto variables = environmentOf(environment);
    int const error = ::posix_spawnp(&running_, arguments.front(), settings.files(), settings.attributes(),
                                     arguments.data(), variables.data());
    if (error != 0) {
        running_ = 0;
        tell_("cannot run " + command_.front() + ": " + std::strerror(error));
    }
}

void CommandSink::reap() {
    int status = 0;
    if (running_ == 0 || ::waitpid(running_, &status, WNOHANG) == 0) {
        return;
    }
    running_ = 0;
    if (WIFSIGNALED(status)) {
        tell_(command_.front() + " was ended by signal " + std::to_string(WTERMSIG(status)));
    } else if (WEXITSTATUS(status) != 0) {
        tell_(command_.front() + " ended with status " + std::to_string(WEXITSTATUS(status)));
    }
}

} // namespace qel::stream

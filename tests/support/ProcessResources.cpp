// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/ProcessResources.h"

#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace qel::test {

namespace {

// GLib keeps idle workers for whoever needs one next.
bool isPooled(std::filesystem::path const& task) {
    std::string name;
    std::getline(std::ifstream(task / "comm"), name);
    return name.rfind("pool", 0) == 0;
}

std::size_t ownThreads() {
    auto const tasks = std::filesystem::directory_iterator("/proc/self/task");
    return static_cast<std::size_t>(
        std::count_if(begin(tasks), end(tasks), [](auto const& task) { return !isPooled(task.path()); }));
}

} // namespace

std::ostream& operator<<(std::ostream& out, ProcessResources const& resources) {
    return out << resources.descriptors << " descriptors, " << resources.threads << " threads, "
               << resources.regions << " regions";
}

ProcessResources ownResources() {
    ProcessResources own;
    own.descriptors = static_cast<std::size_t>(std::distance(
        std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator()));
    own.threads = ownThreads();
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        own.regions += line.find("/QelSharedMemory") == std::string::npos ? 0 : 1;
    }
    return own;
}

bool hasChildren() {
    return ::waitpid(-1, nullptr, WNOHANG) >= 0;
}

} // namespace qel::test

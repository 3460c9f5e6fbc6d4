// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/tools/replay/CreatedObjects.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace qel::test {

CreatedObjects::CreatedObjects() : watch_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (watch_ < 0 || ::inotify_add_watch(watch_, "/dev/shm", IN_CREATE) < 0) {
        throw std::system_error(errno, std::generic_category(), "inotify");
    }
}

CreatedObjects::~CreatedObjects() {
    ::close(watch_);
}

std::vector<std::string> CreatedObjects::names() const {
    std::vector<std::string> names;
    std::array<char, 4096> events{};
    auto const size = ::read(watch_, events.data(), events.size());
    for (ssize_t offset = 0; offset < size;) {
        inotify_event event{};
        std::memcpy(&event, events.data() + offset, sizeof event);
        names.emplace_back(events.data() + offset + sizeof event);
        offset += static_cast<ssize_t>(sizeof event) + static_cast<ssize_t>(event.len);
    }
    return names;
}

} // namespace qel::test

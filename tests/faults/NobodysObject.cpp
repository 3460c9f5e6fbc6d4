// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/faults/NobodysObject.h"

#include "tests/support/RawRegion.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace qel::test {

namespace {

constexpr uid_t nobody = 65534;
constexpr char const* name = "QelSharedMemory";

bool becomeNobody() {
    return ::setgroups(0, nullptr) == 0 && ::setresgid(nobody, nobody, nobody) == 0 &&
           ::setresuid(nobody, nobody, nobody) == 0;
}

bool opensForWriting() {
    int const fd = ::shm_open(name, O_RDWR, 0);
    if (fd >= 0) {
        ::close(fd);
    }
    return fd >= 0;
}

void forge(unsigned char* bytes) {
    constexpr unsigned char state = 9;
    bytes[field::rootState] = state;
    bytes[field::version] = 32;
}

/// What the process does, up to the end of its orders. A byte for each: whether it succeeded.
void serve(int orders, mode_t mode) {
    ::umask(0);
    int const fd = becomeNobody() ? ::shm_open(name, O_RDWR | O_CREAT | O_EXCL, mode) : -1;
    void* mapping = MAP_FAILED; // NOLINT(performance-no-int-to-ptr): POSIX's constant
    if (fd >= 0 && ::ftruncate(fd, rawRegionSize) == 0) {
        mapping = ::mmap(nullptr, rawRegionSize, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    }
    bool done = mapping != MAP_FAILED; // NOLINT(performance-no-int-to-ptr)
    char order = 0;
    while (::write(orders, &done, 1) == 1 && ::read(orders, &order, 1) == 1) {
        switch (order) {
        case 'f':
            forge(static_cast<unsigned char*>(mapping));
            done = true;
            break;
        case 't':
            done = ::ftruncate(fd, 0) == 0;
            break;
        default:
            done = opensForWriting();
            break;
        }
    }
}

} // namespace

NobodysObject::NobodysObject(mode_t mode) {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        throw std::system_error(errno, std::generic_category(), "socketpair");
    }
    child_ = ::fork();
    if (child_ == 0) {
        ::close(ends[0]);
        serve(ends[1], mode);
        ::_exit(0);
    }
    int const error = errno;
    ::close(ends[1]);
    orders_ = ends[0];
    if (child_ < 0) {
        ::close(orders_);
        throw std::system_error(error, std::generic_category(), "fork");
    }
    bool done = false;
    succeeded_ = ::read(orders_, &done, 1) == 1 && done;
}

NobodysObject::~NobodysObject() {
    ::close(orders_);
    ::waitpid(child_, nullptr, 0);
}

bool NobodysObject::obey(char order) const {
    bool done = false;
    return ::write(orders_, &order, 1) == 1 && ::read(orders_, &done, 1) == 1 && done;
}

} // namespace qel::test

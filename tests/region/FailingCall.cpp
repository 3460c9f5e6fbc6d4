// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/region/FailingCall.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <cerrno>
#include <cstdarg>

namespace {

struct Armed {
    qel::test::Call call;
    int error;
    int times;
    int after;
};

Armed armed{qel::test::Call::Mmap, 0, 0, 0};

/// Whether this call is one of those that shall not be made.
bool isArmedFor(qel::test::Call call) {
    if (armed.call != call || armed.times == 0) {
        return false;
    }
    if (armed.after > 0) {
        --armed.after;
        return false;
    }
    --armed.times;
    return true;
}

/// The error that this call shall end with, 0 for a call that shall succeed.
int errorFor(qel::test::Call call) {
    return isArmedFor(call) ? armed.error : 0;
}

/// Whether this call shall fail; errno is then set.
bool fails(qel::test::Call call) {
    int const error = errorFor(call);
    if (error != 0) {
        errno = error;
    }
    return error != 0;
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the linker's names for --wrap.
extern "C" {

int __real_shm_open(char const* name, int flags, mode_t mode);
int __real_shm_unlink(char const* name);
int __real_fstat(int fd, struct stat* status);
int __real_ftruncate(int fd, off_t length);
int __real_posix_fallocate(int fd, off_t offset, off_t length);
void* __real_mmap(void* address, size_t length, int protection, int flags, int fd, off_t offset);
int __real_munmap(void* address, size_t length);
int __real_close(int fd);
int __real_fcntl(int fd, int command, ...);

int __wrap_shm_open(char const* name, int flags, mode_t mode);
int __wrap_shm_unlink(char const* name);
int __wrap_fstat(int fd, struct stat* status);
int __wrap_ftruncate(int fd, off_t length);
int __wrap_posix_fallocate(int fd, off_t offset, off_t length);
void* __wrap_mmap(void* address, size_t length, int protection, int flags, int fd, off_t offset);
int __wrap_munmap(void* address, size_t length);
int __wrap_close(int fd);
int __wrap_fcntl(int fd, int command, ...);

int __wrap_shm_open(char const* name, int flags, mode_t mode) {
    return fails(qel::test::Call::ShmOpen) ? -1 : __real_shm_open(name, flags, mode);
}

int __wrap_shm_unlink(char const* name) {
    if (!isArmedFor(qel::test::Call::ShmUnlink)) {
        return __real_shm_unlink(name);
    }
    errno = armed.error;
    return armed.error != 0 ? -1 : 0;
}

int __wrap_fstat(int fd, struct stat* status) {
    return fails(qel::test::Call::Fstat) ? -1 : __real_fstat(fd, status);
}

int __wrap_ftruncate(int fd, off_t length) {
    return fails(qel::test::Call::Ftruncate) ? -1 : __real_ftruncate(fd, length);
}

int __wrap_posix_fallocate(int fd, off_t offset, off_t length) {
    int const error = errorFor(qel::test::Call::PosixFallocate);
    return error != 0 ? error : __real_posix_fallocate(fd, offset, length);
}

void* __wrap_mmap(void* address, size_t length, int protection, int flags, int fd, off_t offset) {
    if (fails(qel::test::Call::Mmap)) {
        return MAP_FAILED; // NOLINT(performance-no-int-to-ptr): POSIX's constant
    }
    return __real_mmap(address, length, protection, flags, fd, offset);
}

int __wrap_munmap(void* address, size_t length) {
    return fails(qel::test::Call::Munmap) ? -1 : __real_munmap(address, length);
}

int __wrap_close(int fd) {
    int const result = __real_close(fd);
    return fails(qel::test::Call::Close) ? -1 : result;
}

int __wrap_fcntl(int fd, int command, ...) {
    std::va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*); // a number or an address, whatever the command takes
    va_end(arguments);
    return fails(qel::test::Call::Fcntl) ? -1 : __real_fcntl(fd, command, argument);
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace qel::test {

FailingCall::FailingCall(Call call, int error, int times, int after) {
    armed = {call, error, times, after};
}

FailingCall::~FailingCall() {
    armed.times = 0;
}

int FailingCall::left() {
    return armed.times;
}

} // namespace qel::test

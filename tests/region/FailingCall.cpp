#include "tests/region/FailingCall.h"

#include <sys/mman.h>
#include <sys/types.h>

#include <cerrno>

namespace {

struct Armed {
    qel::test::Call call;
    int error;
    int times;
};

Armed armed{qel::test::Call::Mmap, 0, 0};

/// The error that this call shall end with, 0 for a call that shall succeed.
int errorFor(qel::test::Call call) {
    if (armed.call != call || armed.times == 0) {
        return 0;
    }
    --armed.times;
    return armed.error;
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the linker's names for --wrap.
extern "C" {

int __real_ftruncate(int fd, off_t length);
int __real_posix_fallocate(int fd, off_t offset, off_t length);
void* __real_mmap(void* address, size_t length, int protection, int flags, int fd, off_t offset);
int __real_munmap(void* address, size_t length);

int __wrap_ftruncate(int fd, off_t length);
int __wrap_posix_fallocate(int fd, off_t offset, off_t length);
void* __wrap_mmap(void* address, size_t length, int protection, int flags, int fd, off_t offset);
int __wrap_munmap(void* address, size_t length);

int __wrap_ftruncate(int fd, off_t length) {
    if (int const error = errorFor(qel::test::Call::Ftruncate)) {
        errno = error;
        return -1;
    }
    return __real_ftruncate(fd, length);
}

int __wrap_posix_fallocate(int fd, off_t offset, off_t length) {
    int const error = errorFor(qel::test::Call::PosixFallocate);
    return error != 0 ? error : __real_posix_fallocate(fd, offset, length);
}

void* __wrap_mmap(void* address, size_t length, int protection, int flags, int fd, off_t offset) {
    if (int const error = errorFor(qel::test::Call::Mmap)) {
        errno = error;
        return MAP_FAILED; // NOLINT(performance-no-int-to-ptr): POSIX's constant
    }
    return __real_mmap(address, length, protection, flags, fd, offset);
}

int __wrap_munmap(void* address, size_t length) {
    if (int const error = errorFor(qel::test::Call::Munmap)) {
        errno = error;
        return -1;
    }
    return __real_munmap(address, length);
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace qel::test {

FailingCall::FailingCall(Call call, int error, int times) {
    armed = {call, error, times};
}

FailingCall::~FailingCall() {
    armed.times = 0;
}

int FailingCall::left() {
    return armed.times;
}

} // namespace qel::test

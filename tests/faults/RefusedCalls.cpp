// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/faults/RefusedCalls.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <exception>
#include <system_error>
#include <thread>
#include <utility>

namespace qel::test {

namespace {

using Calls = std::pair<unsigned int, unsigned int>;

Calls callsOf(Refused what) {
    return what == Refused::NewThreads ? Calls{SYS_clone, SYS_clone3} : Calls{SYS_openat, SYS_openat2};
}

/// Holds for the calling thread and those that it starts, up to their end.
void refuse(Calls const& calls, int error) {
    std::array<sock_filter, 5> rules{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, calls.first, 1, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, calls.second, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned int>(error)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    sock_fprog program{static_cast<unsigned short>(rules.size()), rules.data()};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
        throw std::system_error(errno, std::generic_category(), "filter of system calls");
    }
}

} // namespace

void withRefused(Refused what, int error, std::function<void()> const& action) {
    std::exception_ptr failure;
    std::thread([&] {
        try {
            refuse(callsOf(what), error);
            action();
        } catch (...) {
            failure = std::current_exception();
        }
    }).join();
    if (failure) {
        std::rethrow_exception(failure);
    }
}

} // namespace qel::test

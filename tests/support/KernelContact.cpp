// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/KernelContact.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstddef>
#include <ostream>

namespace qel::test {

namespace {

// The handler writes them; it can have no other state.
std::atomic<std::uint64_t> refusedCalls{0};
std::atomic<int> lastRefusedCall{-1};
static_assert(std::atomic<std::uint64_t>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

void onRefusedCall(int /*signal*/, siginfo_t* info, void* /*context*/) {
    refusedCalls.fetch_add(1);
    lastRefusedCall.store(info->si_syscall);
}

/// Page faults of the calling thread, with and without a look at a disk.
std::uint64_t pageFaults() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return static_cast<std::uint64_t>(usage.ru_minflt) + static_cast<std::uint64_t>(usage.ru_majflt);
}

} // namespace

std::ostream& operator<<(std::ostream& stream, KernelContact const& contact) {
    if (contact.systemCalls != 0) {
        stream << contact.systemCalls << " system calls, the last one number " << contact.lastSystemCall;
    }
    if (contact.pageFaults != 0) {
        stream << (contact.systemCalls != 0 ? "; " : "") << contact.pageFaults << " page faults";
    }
    return stream;
}

bool refuseSystemCalls() {
    struct sigaction action {};
    action.sa_sigaction = onRefusedCall;
    action.sa_flags = SA_SIGINFO;
    if (sigaction(SIGSYS, &action, nullptr) != 0) {
        return false;
    }
    constexpr auto allow = SECCOMP_RET_ALLOW;
    constexpr auto refuse = SECCOMP_RET_TRAP; // SIGSYS in this thread
    constexpr auto equal = BPF_JMP | BPF_JEQ | BPF_K;
    // Each comparison jumps to the last statement but one if it holds.
    std::array<sock_filter, 7> statements{{
        {BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)},
        {equal, 4, 0, SYS_write},
        {equal, 3, 0, SYS_getrusage},
        {equal, 2, 0, SYS_rt_sigreturn}, // the handler's way back
        {equal, 1, 0, SYS_exit_group},
        {BPF_RET | BPF_K, 0, 0, refuse},
        {BPF_RET | BPF_K, 0, 0, allow},
    }};
    sock_fprog const filter{statements.size(), statements.data()};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

KernelContact kernelContactOf(std::function<void()> const& body) {
    refusedCalls = 0;
    lastRefusedCall = -1;
    auto const before = pageFaults();
    body();
    auto const after = pageFaults();
    return {refusedCalls, lastRefusedCall, after - before};
}

} // namespace qel::test

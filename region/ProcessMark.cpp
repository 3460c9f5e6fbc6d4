// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/ProcessMark.h"

#include <pthread.h>
#include <unistd.h>

#include <atomic>

namespace shm {

namespace {

/// How often this process and those it comes from were forked.
std::atomic<std::uint32_t> forks{0};

} // namespace

std::uint64_t processMark() noexcept {
    // If the system has no memory to register this, the number of the process has to do.
    static bool const isCounting = ::pthread_atfork(nullptr, nullptr, [] { ++forks; }) == 0;
    static_cast<void>(isCounting);
    return std::uint64_t{forks} << 32U | static_cast<std::uint32_t>(::getpid());
}

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/OwnedThread.h"

#include <boost/thread/exceptions.hpp>

#include <pthread.h>

#include <atomic>

namespace shm {

namespace {

/// Number of forks that led to this process. (Not the process id: the system reuses ids of ended processes.)
std::atomic<std::uint32_t> forks{0};

/// List of the abandoned threads, so that leak detectors find them referenced.
std::atomic<OwnedThread*> abandoned{nullptr};

/// Counts forks from the first call on and returns their number.
std::uint32_t countedForks() {
    static bool const counting = [] {
        int const error = ::pthread_atfork(nullptr, nullptr, [] { ++forks; });
        if (error != 0) {
            throw boost::thread_resource_error(error, "boost thread: no memory to tell forks by");
        }
        return true;
    }();
    static_cast<void>(counting);
    return forks;
}

} // namespace

OwnedThread::OwnedThread(std::function<void()> const& body) : forks_(countedForks()), thread_(body) {}

bool OwnedThread::isOfThisProcess() const noexcept {
    return forks_ == forks;
}

void OwnedThread::abandon(std::unique_ptr<OwnedThread> foreign) noexcept {
    foreign->nextAbandoned_ = abandoned;
    abandoned = foreign.release();
}

} // namespace shm

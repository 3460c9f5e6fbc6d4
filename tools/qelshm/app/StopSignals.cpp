// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/StopSignals.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace qel::watch {

namespace {

sigset_t stopSet() {
    sigset_t set;
    sigemptyset(&set);
    for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&set, number);
    }
    return set;
}

} // namespace

StopSignals::StopSignals() {
    auto const set = stopSet();
    if (int const error = pthread_sigmask(SIG_BLOCK, &set, &before_); error != 0) {
        throw std::system_error(error, std::generic_category(), "pthread_sigmask");
    }
    signals_ = inspect::FileDescriptor(::signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC));
    if (!signals_) {
        throw std::system_error(errno, std::generic_category(), "signalfd");
    }
}

StopSignals::~StopSignals() {
    signalfd_siginfo one = {};
    while (::read(signals_.number(), &one, sizeof one) > 0) {
    }
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

bool StopSignals::wait(std::chrono::milliseconds time, int descriptor, bool isInputAwaited) const {
    short const awaited = isInputAwaited ? POLLIN : 0;
    std::array<pollfd, 2> descriptors{{{signals_.number(), POLLIN, 0}, {descriptor, awaited, 0}}};
    if (::poll(descriptors.data(), descriptors.size(), static_cast<int>(time.count())) <= 0) {
        return false; // in vain, or another signal was handled
    }
    return descriptors[0].revents != 0 || (descriptors[1].revents & (POLLERR | POLLHUP | POLLNVAL)) != 0;
}

} // namespace qel::watch

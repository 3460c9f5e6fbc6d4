// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/StopSignals.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <system_error>

namespace qel::tools {

namespace {

constexpr std::array<int, 3> stops{SIGINT, SIGTERM, SIGHUP};

sigset_t stopSet() {
    sigset_t set;
    sigemptyset(&set);
    for (int const number : stops) {
        sigaddset(&set, number);
    }
    return set;
}

// By handlers, since a program that is started later would inherit a blocked or ignored signal.
void letPass() {
    struct sigaction action = {};
    action.sa_handler = [](int /*number*/) {
    };
    action.sa_flags = SA_RESTART;
    for (int const number : stops) {
        ::sigaction(number, &action, nullptr);
    }
}

/// The time that is left, not negative.
std::timespec timeUntil(StopSignals::Moment moment) {
    using std::chrono::nanoseconds;
    auto const left = std::max(
        std::chrono::duration_cast<nanoseconds>(moment - std::chrono::steady_clock::now()), nanoseconds(0));
    auto const seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    return {static_cast<std::time_t>(seconds.count()), static_cast<long>((left - seconds).count())};
}

} // namespace

struct StopSignals::Wake {
    bool isStop;
    bool isOver; ///< the time
};

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
    bool isStopped = false;
    signalfd_siginfo one = {};
    while (::read(signals_.number(), &one, sizeof one) > 0) {
        isStopped = true;
    }
    if (isStopped) {
        letPass();
    }
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

StopSignals::Wake StopSignals::wait(Moment moment, int descriptor, short events) const {
    std::array<pollfd, 2> descriptors{{{signals_.number(), POLLIN, 0}, {descriptor, events, 0}}};
    auto const time = timeUntil(moment);
    int const ready = ::ppoll(descriptors.data(), descriptors.size(), &time, nullptr);
    if (ready <= 0) {
        return {false, ready == 0};
    }
    constexpr short gone = POLLERR | POLLHUP | POLLNVAL;
    return {descriptors[0].revents != 0 || (descriptors[1].revents & gone) != 0, false};
}

bool StopSignals::waitUntil(Moment moment, int output) const {
    Wake wake{};
    while (!wake.isStop && !wake.isOver) {
        wake = wait(moment, output, 0);
    }
    return wake.isStop;
}

bool StopSignals::waitForInput(Moment moment, int input) const {
    return wait(moment, input, POLLIN).isStop;
}

} // namespace qel::tools

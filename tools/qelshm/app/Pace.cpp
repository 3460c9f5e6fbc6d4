// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/Pace.h"

#include <algorithm>
#include <cerrno>
#include <ctime>

namespace qel::tools {

Pace::Pace() {
    ::sigemptyset(&signals_);
    for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
        ::sigaddset(&signals_, number);
    }
    ::pthread_sigmask(SIG_BLOCK, &signals_, &before_);
}

Pace::~Pace() {
    ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

bool Pace::waitUntil(std::chrono::steady_clock::time_point moment) const {
    using std::chrono::duration_cast;
    for (;;) {
        auto const left =
            std::max(moment - std::chrono::steady_clock::now(), std::chrono::steady_clock::duration(0));
        auto const seconds = duration_cast<std::chrono::seconds>(left);
        std::timespec const time{
            static_cast<std::time_t>(seconds.count()),
            static_cast<long>(duration_cast<std::chrono::nanoseconds>(left - seconds).count())};
        if (::sigtimedwait(&signals_, nullptr, &time) >= 0) {
            return false;
        }
        if (errno == EAGAIN) {
            return true;
        }
    }
}

std::chrono::steady_clock::duration secondsOf(double seconds) {
    return std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(seconds));
}

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/fuzz/Verdict.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <iostream>

namespace qel::fuzz {

namespace {

using std::chrono::nanoseconds;

constexpr std::chrono::milliseconds limit(50);
constexpr int attempts = 3;

nanoseconds processorTime() {
    timespec now{};
    require(::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now) == 0, "there is no clock of the thread's time");
    return std::chrono::seconds(now.tv_sec) + nanoseconds(now.tv_nsec);
}

nanoseconds timeOf(std::function<void()> const& run) {
    auto const start = processorTime();
    run();
    return processorTime() - start;
}

} // namespace

void require(bool condition, std::string const& what) {
    if (!condition) {
        std::cerr << "the input is a failure: " << what << std::endl;
        std::abort();
    }
}

void requireQuick(std::function<void()> const& run) {
    auto fastest = timeOf(run);
    for (int attempt = 1; fastest > limit && attempt < attempts; ++attempt) {
        fastest = std::min(fastest, timeOf(run));
    }
    require(fastest <= limit,
            "a run takes " + std::to_string(fastest.count() / 1000) + " us of processor time");
}

} // namespace qel::fuzz

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/reader/SleepRecorder.h"

#include <cerrno>
#include <ctime>
#include <map>
#include <mutex>

namespace qel::test {

namespace {

struct Record {
    std::mutex mutex;
    bool recording = false;
    std::map<std::chrono::nanoseconds, std::size_t> counts;

    bool note(timespec const& length) {
        std::lock_guard<std::mutex> const lock(mutex);
        if (recording) {
            ++counts[std::chrono::seconds(length.tv_sec) + std::chrono::nanoseconds(length.tv_nsec)];
        }
        return recording;
    }
};

Record& record() {
    static auto* const instance =
        new Record; // never destroyed: other threads may sleep until the process ends
    return *instance;
}

} // namespace

SleepRecorder::SleepRecorder() {
    std::lock_guard<std::mutex> const lock(record().mutex);
    record().counts.clear();
    record().recording = true;
}

SleepRecorder::~SleepRecorder() {
    std::lock_guard<std::mutex> const lock(record().mutex);
    record().recording = false;
}

std::size_t SleepRecorder::count(std::chrono::nanoseconds length) {
    std::lock_guard<std::mutex> const lock(record().mutex);
    auto const found = record().counts.find(length);
    return found == record().counts.end() ? 0 : found->second;
}

} // namespace qel::test

/// Stands before the C library's function of the same name, which std::this_thread::sleep_for calls.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the C library uses reserved names
extern "C" int nanosleep(timespec const* length, timespec* remaining) {
    if (qel::test::record().note(*length)) {
        return 0;
    }
    int const error = ::clock_nanosleep(CLOCK_REALTIME, 0, length, remaining);
    if (error != 0) {
        errno = error;
        return -1;
    }
    return 0;
}

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/ModificationCounter.h"

#include <limits>

namespace shm {

namespace {

constexpr auto maximum = std::numeric_limits<unsigned int>::max();

} // namespace

void ModificationCounter::raise() {
    auto pending = pending_.load();
    while (pending != maximum && !pending_.compare_exchange_weak(pending, pending + 1)) {
    }
}

ModificationCounter::Snapshot ModificationCounter::snapshot() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return {pending_.load(), settled_};
}

void ModificationCounter::settle(Snapshot const& before) {
    std::lock_guard<std::mutex> const lock(mutex_);
    auto pending = before.pending_;
    // A full counter does not show whether it was raised.
    bool const mayTell = before.settled_ == settled_ && pending != maximum;
    ++settled_;
    if (mayTell && pending_.compare_exchange_strong(pending, 0)) {
        return;
    }
    pending = pending_.load();
    while (pending > 1 && !pending_.compare_exchange_weak(pending, pending - 1)) {
    }
}

void ModificationCounter::keepPending() {
    unsigned int none = 0;
    pending_.compare_exchange_strong(none, 1);
}

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "states/QelStateLedThread.h"

#include "states/LedChannels.h"
#include "states/LedSequence.h"
#include "states/LedTables.h"

#include <boost/chrono/duration.hpp>
#include <boost/thread/exceptions.hpp>
#include <boost/thread/thread_only.hpp>

namespace shm {

namespace {

constexpr auto defaultState = eStatus_On;
constexpr LedLevels defaultLevels{0, 1, 0};
constexpr int tickMs = 500;

} // namespace

QelStateLedThread::QelStateLedThread()
    : requested_(defaultState),
      shown_(defaultState),
      brightness_(defaultLevels) {
    update(brightness_, true);
}

QelStateLedThread::~QelStateLedThread() = default;

void QelStateLedThread::run() {
    LedSequence sequence(ledTables, shown_);
    while (running()) {
        tick(sequence);
        try {
            boost::this_thread::sleep_for(boost::chrono::milliseconds(tickMs));
        } catch (boost::thread_interrupted const&) {
            continue; // join() has cleared the running flag
        }
    }
}

void QelStateLedThread::update(std::array<unsigned short, 3U> const& brightness, bool force) {
    writeLevels(ledTables, brightness_, brightness, force);
}

void QelStateLedThread::request(eStatus_Bits state) {
    std::lock_guard<std::recursive_mutex> const lock(mutex_);
    requested_ = state;
}

void QelStateLedThread::tick(LedSequence& sequence) noexcept {
    try {
        auto const requested = [this] {
            std::lock_guard<std::recursive_mutex> const lock(mutex_);
            return requested_;
        }();
        if (auto const* const levels = sequence.tick(requested, shown_)) {
            update(*levels, !sequence.isSurelyShown());
            sequence.markShown(true);
        }
    } catch (...) {
        sequence.markShown(false);
    }
}

} // namespace shm

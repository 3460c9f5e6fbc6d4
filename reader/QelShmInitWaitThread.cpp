// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelShmInitWaitThread.h"

#include "reader/IQelShmInitCallback.h"
#include "region/LogLine.h"

#include <chrono>
#include <iomanip>
#include <thread>

namespace shm {

namespace {

constexpr std::chrono::milliseconds pollInterval{250};

} // namespace

QelShmInitWaitThread::QelShmInitWaitThread(IQelShmInitCallback* callback) : callback_(callback) {}

void QelShmInitWaitThread::run() {
    if (callback_ == nullptr) {
        return;
    }
    unsigned int const budget = callback_->polls();
    for (unsigned int poll = 0; poll < budget && running(); ++poll) {
        if (callback_->initialized()) {
            std::chrono::duration<double> const waited = poll * pollInterval;
            LogLine(readerLog, log4cpp::Priority::INFO, "run")
                << "Initialized after " << std::fixed << std::setprecision(1) << waited.count()
                << "s, opening shared memory";
            callback_->onInitialized();
            return;
        }
        // Not Boost's sleep: the interruption that join() requests must not throw in here.
        std::this_thread::sleep_for(pollInterval);
    }
}

} // namespace shm

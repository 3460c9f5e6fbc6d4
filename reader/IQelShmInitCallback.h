// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Callbacks of the thread that waits for the hardware manager.
#pragma once

#include "region/QelExport.h"

namespace shm {

/// Callbacks of QelShmInitWaitThread.
///
/// Threads: thread-bound to the wait thread, which calls both operations.
class QEL_EXPORT IQelShmInitCallback {
public:
    /// The longest wait in seconds.
    static constexpr unsigned int MAX_WAIT = 600;

    /// @param seconds wait budget, at most MAX_WAIT counts; 0 means not to ask at all
    explicit IQelShmInitCallback(unsigned int seconds);
    IQelShmInitCallback(IQelShmInitCallback const&) = delete;
    IQelShmInitCallback& operator=(IQelShmInitCallback const&) = delete;

    // Virtual operations in the order of their slots (binary interface); new ones go last.

    /// The thread must have been joined before.
    virtual ~IQelShmInitCallback();

    /// Asks the hardware manager once.
    /// @return whether it is initialised
    virtual bool initialized() = 0;

    /// Called once, when the hardware manager is initialised.
    virtual void onInitialized() = 0;

    /// @return the wait budget in polls of 250 ms
    unsigned int polls() const { return polls_; }

private:
    unsigned int polls_;
};

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Who waits for the hardware manager, and for how long.
#pragma once

#include "region/QelExport.h"

namespace shm {

/// What QelShmInitWaitThread asks and tells.
///
/// Threads: both operations are called on the wait thread.
class QEL_EXPORT IQelShmInitCallback {
public:
    /// The longest wait in seconds.
    static constexpr unsigned int MAX_WAIT = 600;

    /// @param seconds wait budget, cut to MAX_WAIT; 0 means not to ask at all
    explicit IQelShmInitCallback(unsigned int seconds);
    IQelShmInitCallback(IQelShmInitCallback const&) = delete;
    IQelShmInitCallback& operator=(IQelShmInitCallback const&) = delete;

    // Virtual operations in slot order, part of the binary contract; new ones go last.

    virtual ~IQelShmInitCallback();

    /// Asks once whether the hardware manager is initialised.
    virtual bool initialized() = 0;

    /// Acts on the hardware manager being initialised.
    virtual void onInitialized() = 0;

    /// The wait budget in polls of 250 ms.
    unsigned int polls() const { return polls_; }

private:
    unsigned int polls_;
};

} // namespace shm

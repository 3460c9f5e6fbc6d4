// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The thread that waits for the hardware manager.
#pragma once

#include "reader/Thread.h"
#include "region/QelExport.h"

namespace shm {

class IQelShmInitCallback;

/// Asks its callback every 250 ms whether the hardware manager is initialised, at most
/// IQelShmInitCallback::polls() times. On success it calls onInitialized() and ends. After the last poll it ends
/// silently; there is no later retry. join() waits for the poll or the pause under way.
///
/// Threads: thread-bound to the owner, who must join before it destroys the callback.
class QEL_EXPORT QelShmInitWaitThread : public Thread {
public:
    /// @param callback not owned, must live until the thread is joined; null makes run() return at once
    explicit QelShmInitWaitThread(IQelShmInitCallback* callback);

    /// The thread's body.
    /// @note Logs at INFO in "qel.shm.access.reader" "Initialized after <seconds>s, opening shared memory": the
    ///       sum of the pauses, with one digit after the point.
    void run() override;

private:
    IQelShmInitCallback* callback_;
};

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Thread that waits for the hardware manager.
#pragma once

#include "reader/Thread.h"
#include "region/QelExport.h"

namespace shm {

class IQelShmInitCallback;

/// Asks its callback every 250 ms whether the hardware manager is initialised, as often as the callback's
/// budget allows. On success it tells the callback and ends; when the budget runs out it ends without a word,
/// and nothing retries later. join() ends the loop after the question or the pause under way.
class QEL_EXPORT QelShmInitWaitThread : public Thread {
public:
    /// @param callback not owned, must live until the thread was joined; null makes run() return at once
    explicit QelShmInitWaitThread(IQelShmInitCallback* callback);

    /// The loop. Logs in "qel.shm.access.reader" at INFO "Initialized after <seconds>s, opening shared
    /// memory", the seconds being those of the pauses so far with one digit after the point.
    void run() override;

private:
    IQelShmInitCallback* callback_;
};

} // namespace shm

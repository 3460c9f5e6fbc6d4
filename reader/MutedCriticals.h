// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Suppresses expected critical messages of GIO.
#pragma once

namespace shm {

/// While an object lives, GIO's critical messages of its thread are dropped. Those of other threads go to GLib's
/// default handler. At most one object per thread.
///
/// Threads: thread-bound to the thread that made it.
class MutedCriticals {
public:
    /// Installs a log handler for the domain "GLib-GIO".
    MutedCriticals();

    /// Removes the log handler.
    ~MutedCriticals();
    MutedCriticals(MutedCriticals const&) = delete;
    MutedCriticals& operator=(MutedCriticals const&) = delete;

private:
    unsigned int handler_;
};

} // namespace shm

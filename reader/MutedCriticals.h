// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Calls into GIO whose complaint is expected.
#pragma once

namespace shm {

/// While one lives, criticals of GIO that its thread causes are dropped; those of other threads go to GLib's default
/// handler. One at a time per thread.
///
/// Threads: belongs to the thread that made it; any number of threads may have one.
class MutedCriticals {
public:
    MutedCriticals();
    ~MutedCriticals();
    MutedCriticals(MutedCriticals const&) = delete;
    MutedCriticals& operator=(MutedCriticals const&) = delete;

private:
    unsigned int handler_;
};

} // namespace shm

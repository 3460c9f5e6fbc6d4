// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A hardware manager that is not root.
#pragma once

#include "reader/GLibPtr.h"

#include <gio/gio.h>

namespace qel::test {

/// Owns the hardware manager's bus name as the user "nobody" for as long as it lives, and serves nothing.
///
/// Threads: thread-bound to the test's main thread; while one is made, no other thread may open files or reach the bus.
class NameOfNobody {
public:
    NameOfNobody();
    ~NameOfNobody();
    NameOfNobody(NameOfNobody const&) = delete;
    NameOfNobody& operator=(NameOfNobody const&) = delete;

    /// False where there is no such user, or no bus.
    bool isOwned() const { return isOwned_; }

private:
    shm::GObjectPtr<GDBusConnection> bus_;
    bool isOwned_ = false;
};

} // namespace qel::test

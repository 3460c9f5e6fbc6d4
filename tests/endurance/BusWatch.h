// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What readers leave with GLib and with the bus.
#pragma once

#include "reader/GLibPtr.h"

#include <gio/gio.h>

#include <cstddef>

namespace qel::test {

/// Sources that are attached to the default main context.
std::size_t attachedSources();

/// Asks the bus what its clients want to hear, over a connection of its own.
///
/// Threads: thread-bound to the thread that made it.
class BusWatch {
public:
    /// Throws std::runtime_error when the bus cannot be reached.
    BusWatch();
    ~BusWatch();
    BusWatch(BusWatch const&) = delete;
    BusWatch& operator=(BusWatch const&) = delete;

    /// Match rules of all connections. Throws std::runtime_error when the bus keeps no statistics.
    std::size_t matchRules() const;

private:
    shm::GObjectPtr<GDBusConnection> connection_;
};

} // namespace qel::test

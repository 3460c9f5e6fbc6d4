// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/busAnswers.h"

#include "reader/Deadline.h"
#include "reader/privateBus.h"

#include <gio/gio.h>

#include <chrono>
#include <system_error>

namespace shm {

namespace {

constexpr std::chrono::seconds patience{2};

bool answers(GCancellable* cancellable) {
    auto const connection = privateBus(cancellable);
    if (!connection) {
        return false;
    }
    g_dbus_connection_close_sync(connection.get(), cancellable, nullptr);
    return true;
}

} // namespace

bool busAnswers() {
    try {
        Deadline const deadline(patience);
        return answers(deadline.cancellable());
    } catch (std::system_error const&) { // no thread for the time limit
        return false;
    }
}

} // namespace shm

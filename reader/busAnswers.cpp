// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/busAnswers.h"

#include "reader/Deadline.h"
#include "reader/GLibPtr.h"

#include <gio/gio.h>

#include <chrono>
#include <system_error>

namespace shm {

namespace {

constexpr std::chrono::seconds patience{2};

bool answers(GCancellable* cancellable) {
    GStringPtr const address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, cancellable, nullptr));
    if (!address) {
        return false;
    }
    auto const flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    GObjectPtr<GDBusConnection> const connection(
        g_dbus_connection_new_for_address_sync(address.get(), flags, nullptr, cancellable, nullptr));
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

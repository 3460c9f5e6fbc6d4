// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A connection to the system bus that nobody else has.
#pragma once

#include "reader/GLibPtr.h"

#include <gio/gio.h>

namespace shm {

/// Connects to the system bus anew. Unlike the connection that the process shares, this one ends with its owner, and
/// the end of the bus does not end the process. Reentrant.
///
/// In a header alone, since the tools use it, too.
/// @param cancellable ends the attempt; may be null
/// @param failure receives why there is none; may be null
/// @return null when there is no bus
inline GObjectPtr<GDBusConnection> privateBus(GCancellable* cancellable, GError** failure = nullptr) {
    GStringPtr const address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, cancellable, failure));
    if (!address) {
        return nullptr;
    }
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return GObjectPtr<GDBusConnection>(
        g_dbus_connection_new_for_address_sync(address.get(), flags, nullptr, cancellable, failure));
}

} // namespace shm

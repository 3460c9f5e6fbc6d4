#include "reader/busAnswers.h"

#include "reader/GLibPtr.h"

#include <gio/gio.h>

namespace shm {

bool busAnswers() {
    GStringPtr const address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr));
    if (!address) {
        return false;
    }
    auto const flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    GObjectPtr<GDBusConnection> const connection(
        g_dbus_connection_new_for_address_sync(address.get(), flags, nullptr, nullptr, nullptr));
    if (!connection) {
        return false;
    }
    g_dbus_connection_close_sync(connection.get(), nullptr, nullptr);
    return true;
}

} // namespace shm

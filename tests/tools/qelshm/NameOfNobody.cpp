// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/tools/qelshm/NameOfNobody.h"

#include <unistd.h>

#include <cstdlib>

namespace qel::test {

namespace {

constexpr uid_t nobody = 65534;

/// The bus takes the user from the process at the time of connecting.
GDBusConnection* connectAsNobody() {
    if (::seteuid(nobody) != 0) {
        return nullptr;
    }
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    char* const address = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
    auto* const bus = address == nullptr
                          ? nullptr
                          : g_dbus_connection_new_for_address_sync(address, flags, nullptr, nullptr, nullptr);
    g_free(address);
    if (::seteuid(0) != 0) {
        std::abort(); // no other test may run like this
    }
    return bus;
}

} // namespace

NameOfNobody::NameOfNobody() : bus_(connectAsNobody()) {
    if (bus_ == nullptr) {
        return;
    }
    GVariant* const answer = g_dbus_connection_call_sync(
        bus_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", "org.qel.HardwareManager", 0U), G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE,
        -1, nullptr, nullptr);
    if (answer != nullptr) {
        guint32 result = 0;
        g_variant_get(answer, "(u)", &result);
        g_variant_unref(answer);
        isOwned_ = result == 1;
    }
}

NameOfNobody::~NameOfNobody() {
    if (bus_ != nullptr) {
        g_dbus_connection_close_sync(bus_, nullptr, nullptr);
        g_object_unref(bus_);
    }
}

} // namespace qel::test

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/ManagerUser.h"

#include "reader/Deadline.h"
#include "reader/GLibPtr.h"

#include <chrono>

namespace qel::tools {

namespace {

constexpr std::chrono::milliseconds patience(2000);

shm::GObjectPtr<GDBusConnection> connect(GCancellable* cancellable) {
    shm::GStringPtr const address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, cancellable, nullptr));
    if (!address) {
        return nullptr;
    }
    // Not the shared connection: that one would stay, and end the process with the bus.
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return shm::GObjectPtr<GDBusConnection>(
        g_dbus_connection_new_for_address_sync(address.get(), flags, nullptr, cancellable, nullptr));
}

} // namespace

std::optional<uid_t> managerUser() {
    shm::Deadline const deadline(patience);
    auto const bus = connect(deadline.cancellable());
    if (!bus) {
        return std::nullopt;
    }
    shm::GVariantPtr const answer(g_dbus_connection_call_sync(
        bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "GetConnectionUnixUser", g_variant_new("(s)", "org.qel.HardwareManager"), G_VARIANT_TYPE("(u)"),
        G_DBUS_CALL_FLAGS_NONE, static_cast<int>(patience.count()), deadline.cancellable(), nullptr));
    if (!answer) {
        return std::nullopt;
    }
    guint32 user = 0;
    g_variant_get(answer.get(), "(u)", &user);
    return user;
}

} // namespace qel::tools

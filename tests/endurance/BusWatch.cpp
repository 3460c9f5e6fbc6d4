// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/endurance/BusWatch.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace qel::test {

namespace {

void throwIf(GError* failure) {
    if (shm::GErrorPtr const error{failure}) {
        throw std::runtime_error(std::string("bus watch: ") + error->message);
    }
}

} // namespace

std::size_t attachedSources() {
    // Ids are given in ascending order, so the one of a new source is above all others.
    auto* const probe = g_timeout_source_new_seconds(3600);
    auto const last = g_source_attach(probe, nullptr);
    std::size_t found = 0;
    for (guint id = 1; id < last; ++id) {
        found += g_main_context_find_source_by_id(nullptr, id) == nullptr ? 0 : 1;
    }
    g_source_destroy(probe);
    g_source_unref(probe);
    return found;
}

BusWatch::BusWatch() {
    char const* const address = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
    GError* failure = nullptr;
    connection_.reset(g_dbus_connection_new_for_address_sync(
        address == nullptr ? "" : address,
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &failure));
    throwIf(failure);
}

BusWatch::~BusWatch() {
    g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
}

std::size_t BusWatch::matchRules() const {
    GError* failure = nullptr;
    GVariant* const reply = g_dbus_connection_call_sync(
        connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
        "org.freedesktop.DBus.Debug.Stats", "GetAllMatchRules", nullptr, G_VARIANT_TYPE("(a{sas})"),
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &failure);
    throwIf(failure);
    std::size_t found = 0;
    GVariant* const connections = g_variant_get_child_value(reply, 0);
    for (gsize i = 0; i < g_variant_n_children(connections); ++i) {
        GVariant* const connection = g_variant_get_child_value(connections, i);
        GVariant* const rules = g_variant_get_child_value(connection, 1);
        found += g_variant_n_children(rules);
        g_variant_unref(rules);
        g_variant_unref(connection);
    }
    g_variant_unref(connections);
    g_variant_unref(reply);
    return found;
}

} // namespace qel::test

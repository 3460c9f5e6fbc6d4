// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/tools/qelshm/NameOfNobody.h"

#include "reader/privateBus.h"

#include <unistd.h>

#include <cstdlib>

namespace qel::test {

namespace {

constexpr uid_t nobody = 65534;

/// The bus takes the user from the process at the time of connecting.
shm::GObjectPtr<GDBusConnection> connectAsNobody() {
    if (::seteuid(nobody) != 0) {
        return nullptr;
    }
    auto bus = shm::privateBus(nullptr);
    if (::seteuid(0) != 0) {
        std::abort(); // no other test may run like this
    }
    return bus;
}

} // namespace

NameOfNobody::NameOfNobody() : bus_(connectAsNobody()) {
    if (!bus_) {
        return;
    }
    shm::GVariantPtr const answer(g_dbus_connection_call_sync(
        bus_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", "org.qel.HardwareManager", 0U), G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE,
        -1, nullptr, nullptr));
    if (answer) {
        guint32 result = 0;
        g_variant_get(answer.get(), "(u)", &result);
        isOwned_ = result == 1;
    }
}

NameOfNobody::~NameOfNobody() {
    if (bus_) {
        g_dbus_connection_close_sync(bus_.get(), nullptr, nullptr);
    }
}

} // namespace qel::test

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/ManagerUser.h"

#include "reader/Deadline.h"
#include "reader/GLibPtr.h"
#include "reader/privateBus.h"

#include <chrono>

namespace qel::tools {

namespace {

constexpr std::chrono::milliseconds patience(2000);

} // namespace

std::optional<uid_t> managerUser() {
    shm::Deadline const deadline(patience);
    auto const bus = shm::privateBus(deadline.cancellable());
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

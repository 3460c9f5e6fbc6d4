// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/faults/NoConnection.h"

#include <gio/gio.h>

#include <atomic>

namespace {

std::atomic<bool> gone{false};

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the linker's names for --wrap.
extern "C" {

GDBusConnection* __real_g_dbus_proxy_get_connection(GDBusProxy* proxy);
GDBusConnection* __wrap_g_dbus_proxy_get_connection(GDBusProxy* proxy);

GDBusConnection* __wrap_g_dbus_proxy_get_connection(GDBusProxy* proxy) {
    return gone ? nullptr : __real_g_dbus_proxy_get_connection(proxy);
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace qel::test {

NoConnection::NoConnection() {
    gone = true;
}

NoConnection::~NoConnection() {
    gone = false;
}

} // namespace qel::test

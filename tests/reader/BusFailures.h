// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Ways in which a process loses the system bus.
#pragma once

#include "reader/GLibPtr.h"

#include <gio/gio.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>

namespace qel::test {

/// While one lives, new connections to the system bus go to another address.
class SystemBusAddress {
public:
    explicit SystemBusAddress(std::string const& address) {
        if (char const* const former = std::getenv(variable)) {
            former_ = former;
        }
        ::setenv(variable, address.c_str(), 1);
    }
    ~SystemBusAddress() {
        if (former_) {
            ::setenv(variable, former_->c_str(), 1);
        } else {
            ::unsetenv(variable);
        }
    }
    SystemBusAddress(SystemBusAddress const&) = delete;
    SystemBusAddress& operator=(SystemBusAddress const&) = delete;

private:
    static constexpr char const* variable = "DBUS_SYSTEM_BUS_ADDRESS";
    std::optional<std::string> former_;
};

/// While one lives, new connections to the system bus fail: "Could not connect: No such file or directory". A
/// connection that the process still holds goes on to serve.
class UnreachableBus {
    SystemBusAddress const address_{"unix:path=/no/such/bus"};
};

/// While one lives, new connections to the system bus are taken and never greeted, as by a stopped bus.
class MuteBus {
public:
    MuteBus() : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        auto const name = "qel-mute-bus-" + std::to_string(::getpid());
        sockaddr_un address = {};
        address.sun_family = AF_UNIX; // and a zero at the path's begin: a name without a file
        name.copy(&address.sun_path[1], sizeof address.sun_path - 1);
        auto const size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
        if (::bind(socket_, reinterpret_cast<sockaddr*>(&address), size) != 0 || ::listen(socket_, 8) != 0) {
            throw std::system_error(errno, std::generic_category(), name);
        }
        address_.emplace("unix:abstract=" + name);
    }
    ~MuteBus() { ::close(socket_); }
    MuteBus(MuteBus const&) = delete;
    MuteBus& operator=(MuteBus const&) = delete;

private:
    int socket_;
    std::optional<SystemBusAddress> address_;
};

/// The connection that sharedConnection() gave last, for as long as somebody uses it.
inline GWeakRef lastConnection{};

/// The connection that all users of the bus in this process share, one reference more.
inline shm::GObjectPtr<GDBusConnection> sharedConnection() {
    shm::GObjectPtr<GDBusConnection> connection(g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr));
    g_weak_ref_set(&lastConnection, connection.get());
    return connection;
}

/// Whether the last connection was closed, but is still used by somebody. The process gets no other until then.
inline bool isClosedConnectionInUse() {
    shm::GObjectPtr<GDBusConnection> const connection(
        static_cast<GDBusConnection*>(g_weak_ref_get(&lastConnection)));
    return connection != nullptr && g_dbus_connection_is_closed(connection.get()) != FALSE;
}

/// Closes the shared connection and lets the main context hear of it, as it happens when the bus goes away.
/// @throws std::logic_error when it is closed already
inline void closeSharedConnection() {
    auto const connection = sharedConnection();
    if (g_dbus_connection_is_closed(connection.get()) != FALSE) {
        throw std::logic_error("the shared connection to the bus is closed already");
    }
    bool closed = false;
    auto const onClosed = +[](GDBusConnection*, gboolean, GError*, bool* flag) {
        *flag = true;
    };
    g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
    auto const handler = g_signal_connect(connection.get(), "closed", G_CALLBACK(onClosed), &closed);
    g_dbus_connection_close_sync(connection.get(), nullptr, nullptr);
    while (!closed) {
        g_main_context_iteration(nullptr, TRUE);
    }
    g_signal_handler_disconnect(connection.get(), handler);
}

} // namespace qel::test

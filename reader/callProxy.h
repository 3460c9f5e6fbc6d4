// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Calls a D-Bus method through a proxy whose service may have gone.
#pragma once

#include "reader/GLibPtr.h"

#include <gio/gio.h>

#include <chrono>
#include <iostream>
#include <thread>
#include <utility>

namespace shm {

/// Time-out of a call through a proxy, in ms.
constexpr int PROXY_TIMEOUT = 60000;

/// Internal.
namespace detail {

/// @cond
constexpr int proxyCreations = 3;
constexpr std::chrono::milliseconds proxyPause{123};
constexpr int proxyCreationFailed = 24;

/// Tells whether the proxy's bus name has an owner, as far as the proxy knows.
template <typename Proxy>
bool hasOwner(Proxy* proxy) {
    return proxy != nullptr && GStringPtr(g_dbus_proxy_get_name_owner(G_DBUS_PROXY(proxy))) != nullptr;
}

/// Replaces the proxy in the holder. On failure the holder is empty and error is set.
template <typename CreateProxy, typename Proxy>
bool renewProxy(char const* busName, char const* objectPath, GError*& error, CreateProxy& create,
                Proxy** holder) {
    // The process shares one bus connection, which ends with its last reference, and so do the subscriptions on
    // it. This reference keeps it until there is a new proxy.
    GObjectPtr<GDBusConnection> connection;
    if (*holder != nullptr) {
        if (auto* const shared = g_dbus_proxy_get_connection(G_DBUS_PROXY(*holder))) {
            connection.reset(G_DBUS_CONNECTION(g_object_ref(shared)));
        }
        g_object_unref(*holder);
        *holder = nullptr;
    }

    GError* failure = nullptr;
    *holder = create(G_BUS_TYPE_SYSTEM, G_DBUS_PROXY_FLAGS_NONE, busName, objectPath, nullptr, &failure);
    if (failure == nullptr) {
        return true;
    }
    GErrorPtr const owned(failure);
    std::cerr << "The attempt to get a new proxy failed with: " << owned->message << std::endl;
    g_set_error_literal(&error, g_quark_from_static_string("g-cppdbusproxycall-error-quark"),
                        proxyCreationFailed, "The proxy creation failed");
    return false;
}

/// @endcond

} // namespace detail

/// Calls a method of a D-Bus service on the system bus, with a time-out of 60 s. While the service's bus name has
/// no owner, the proxy is created again, up to three times with a pause of 123 ms after each. Then the call is
/// made in any case. A failed creation is reported on standard error.
///
/// The template's flag is part of the signature and must be false.
///
/// Threads: reentrant. Only one thread at a time may use a holder.
/// @param busName    well-known name of the service
/// @param objectPath of the service's object
/// @param error      must be null. Receives the call's error, or an error of the domain
///                   "g-cppdbusproxycall-error-quark" with code 24 when no proxy can be created. The caller frees
///                   it.
/// @param create     the generated ..._proxy_new_for_bus_sync
/// @param holder     where the caller keeps its proxy or null. The proxy may be replaced. If the holder is null,
///                   "No proxy given" is written to standard error and no call is made.
/// @param call       the generated ..._call_..._sync
/// @param arguments  of the method, without the cancellable and the error at the end
/// @return what the call function returned; false when no call was made
template <bool, typename CreateProxy, typename Proxy, typename Call, typename... Arguments>
bool callProxy(char const* busName, char const* objectPath, GError*& error, CreateProxy create,
               Proxy** holder, Call call, Arguments&&... arguments) {
    if (holder == nullptr) {
        std::cerr << "No proxy given";
        return false;
    }
    bool owned = detail::hasOwner(*holder);
    for (int creation = 0; !owned && creation < detail::proxyCreations; ++creation) {
        if (!detail::renewProxy(busName, objectPath, error, create, holder)) {
            return false;
        }
        std::this_thread::sleep_for(detail::proxyPause);
        owned = detail::hasOwner(*holder);
    }
    // Each time, since a new proxy has GLib's default.
    g_dbus_proxy_set_default_timeout(G_DBUS_PROXY(*holder), PROXY_TIMEOUT);
    return call(*holder, std::forward<Arguments>(arguments)..., nullptr, &error) != 0;
}

} // namespace shm

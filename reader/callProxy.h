// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Calls a D-Bus method through a proxy that may have gone stale.
#pragma once

#include "reader/GLibPtr.h"

#include <gio/gio.h>

#include <chrono>
#include <iostream>
#include <thread>
#include <utility>

namespace shm {

/// Time-out of every call through a proxy, in ms.
constexpr int PROXY_TIMEOUT = 60000;

namespace detail {

constexpr int proxyCreations = 3;
constexpr std::chrono::milliseconds proxyPause{123};
constexpr int proxyCreationFailed = 24;

/// True when somebody owned the proxy's bus name, as far as the proxy knows.
template <typename Proxy>
bool hasOwner(Proxy* proxy) {
    return proxy != nullptr && GStringPtr(g_dbus_proxy_get_name_owner(G_DBUS_PROXY(proxy))) != nullptr;
}

/// Replaces the proxy in the holder by a new one; on failure the holder is left empty and error is set.
template <typename CreateProxy, typename Proxy>
bool renewProxy(char const* busName, char const* objectPath, GError*& error, CreateProxy& create,
                Proxy** holder) {
    // The bus connection is shared by all who hold it and dies with its last proxy. It has to live on, since
    // signal subscriptions made through the old proxy end with it.
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

} // namespace detail

/// Calls a method of a D-Bus service on the system bus, with a time-out of 60 s. While the service's bus name
/// has no owner the proxy is created anew, up to three times with a pause of 123 ms after each; then the call
/// is made anyway.
///
/// The template's flag is part of the signature and must be false.
/// @param busName,objectPath of the service
/// @param error must be null; receives the call's error, or, when a proxy cannot be created, one of the
///        domain "g-cppdbusproxycall-error-quark" with code 24. The caller frees it.
/// @param create the generated ..._proxy_new_for_bus_sync
/// @param holder where the caller keeps its proxy or null; the proxy in it may be replaced. Without a holder
///        "No proxy given" goes to standard error and no call is made.
/// @param call the generated ..._call_..._sync
/// @param arguments of the method, without the cancellable and the error at the end
/// @return what the call function returned; false when no call was made
///
/// Threads: any, but a holder belongs to one thread at a time. A failed creation is told on standard error.
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

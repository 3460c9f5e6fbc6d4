// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A hardware manager: answers readers whether the region is ready. The writing process of these examples announces
// changes of the structure itself; qel-hardware-manager detects them from outside.
//
// usage: hardware_manager
//
// SIGINT and SIGTERM end the process.

#include "region/QelSharedMemoryAccess.h"
#include "region/QelShmRecords.h"

#include <gio/gio.h>
#include <glib-unix.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>

namespace {

struct Service {
    GDBusNodeInfo* node;
    GMainLoop* loop;
    int status;
};

// [serve]
constexpr char name[] = "org.qel.HardwareManager"; // of the service and of its interface
constexpr char description[] =
    "<node><interface name='org.qel.HardwareManager'>"
    "<method name='initialized'><arg name='state' type='i' direction='out'/></method>"
    "<signal name='shmStructureChanged'/>"
    "</interface></node>";

// Opens the region anew each time, since a restarted writing process may have made another one.
bool isActive() {
    shm::QelSharedMemoryAccess region(shm::ShmAccess::Read);
    region.openShm();
    return region.root() && region.root()->version == shm::ACTIVE_VERSION;
}

// "initialized" is the only method.
void answer(GDBusConnection*, char const*, char const*, char const*, char const*, GVariant*,
            GDBusMethodInvocation* invocation, void*) {
    try {
        g_dbus_method_invocation_return_value(invocation, g_variant_new("(i)", isActive() ? 1 : 0));
    } catch (std::exception const& error) { // must not pass through GLib
        g_dbus_method_invocation_return_dbus_error(invocation, "org.qel.Error", error.what());
    }
}

// Before the name is owned, so that no call comes too early.
void serve(GDBusConnection* bus, char const*, void* service) {
    static GDBusInterfaceVTable const operations{answer, nullptr, nullptr, {}};
    g_dbus_connection_register_object(bus, "/", static_cast<Service*>(service)->node->interfaces[0],
                                      &operations, nullptr, nullptr, nullptr);
}
// [/serve]

// Also when the bus ends.
void fail(GDBusConnection* bus, char const*, void* service) {
    std::cerr << "hardware_manager: "
              << (bus == nullptr ? "there is no system bus" : "the name is taken, or its policy refuses it")
              << '\n';
    static_cast<Service*>(service)->status = EXIT_FAILURE;
    g_main_loop_quit(static_cast<Service*>(service)->loop);
}

} // namespace

int main() {
    Service service{g_dbus_node_info_new_for_xml(description, nullptr), g_main_loop_new(nullptr, FALSE),
                    EXIT_SUCCESS};
    auto const end = [](void* running) -> gboolean {
        g_main_loop_quit(static_cast<GMainLoop*>(running));
        return G_SOURCE_CONTINUE;
    };
    g_unix_signal_add(SIGINT, end, service.loop);
    g_unix_signal_add(SIGTERM, end, service.loop);
    auto const greet = [](GDBusConnection*, char const*, void*) {
        std::cout << "hardware_manager: serves\n" << std::flush;
    };
    guint const owner = g_bus_own_name(G_BUS_TYPE_SYSTEM, name, G_BUS_NAME_OWNER_FLAGS_DO_NOT_QUEUE, serve,
                                       greet, fail, &service, nullptr);
    g_main_loop_run(service.loop);
    g_bus_unown_name(owner);
    g_dbus_node_info_unref(service.node);
    g_main_loop_unref(service.loop);
    return service.status;
}

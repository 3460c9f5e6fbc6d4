// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/hardwaremanager/HardwareManagerService.h"

#include "hardwaremanager/hardwaremanager.h"
#include "reader/privateBus.h"

#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

namespace qel::tools {

namespace {

constexpr char busName[] = "org.qel.HardwareManager";
constexpr char objectPath[] = "/";

void throwIf(GError* failure) {
    shm::GErrorPtr const error(failure);
    if (!error) {
        return;
    }
    if (g_error_matches(error.get(), G_DBUS_ERROR, G_DBUS_ERROR_ACCESS_DENIED) != FALSE) {
        throw std::runtime_error(std::string("the policy of the system bus does not let user ") +
                                 g_get_user_name() + " own " + busName + "; name the user in " + busName +
                                 ".conf in /etc/dbus-1/system.d and reload the bus");
    }
    throw std::runtime_error(std::string("cannot use the system bus: ") + error->message +
                             "; start it, or name another one in DBUS_SYSTEM_BUS_ADDRESS");
}

shm::GObjectPtr<GDBusConnection> connect() {
    GError* failure = nullptr;
    auto connection = shm::privateBus(nullptr, &failure);
    throwIf(failure);
    return connection;
}

} // namespace

HardwareManagerService::HardwareManagerService(std::function<int()> answer, std::function<void()> onLost)
    : answer_(std::move(answer)),
      onLost_(std::move(onLost)),
      connection_(connect()),
      skeleton_(hardwaremanager__skeleton_new()) {
    g_signal_connect(skeleton_.get(), "handle-initialized", G_CALLBACK(onInitialized), this);
    GError* failure = nullptr;
    g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(skeleton_.get()), connection_.get(),
                                     objectPath, &failure);
    throwIf(failure);
    g_signal_connect(connection_.get(), "closed", G_CALLBACK(onClosed), this);
}

HardwareManagerService::~HardwareManagerService() {
    g_signal_handlers_disconnect_by_data(connection_.get(), this);
    g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(skeleton_.get()));
    // Announcements may be queued. The name goes with the connection.
    g_dbus_connection_flush_sync(connection_.get(), nullptr, nullptr);
    g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
}

void HardwareManagerService::ownName() {
    // D-Bus specification, "Message bus messages".
    constexpr unsigned doNotQueue = 4;
    constexpr unsigned primaryOwner = 1;
    constexpr unsigned alreadyOwner = 4;
    auto const reply = callBus("RequestName", g_variant_new("(su)", busName, doNotQueue));
    if (reply != primaryOwner && reply != alreadyOwner) {
        throw std::runtime_error(std::string("another process owns ") + busName +
                                 " on the system bus; end it first, since a unit has one hardware manager");
    }
}

void HardwareManagerService::releaseName() {
    callBus("ReleaseName", g_variant_new("(s)", busName));
}

unsigned HardwareManagerService::callBus(char const* method, GVariant* arguments) {
    GError* failure = nullptr;
    shm::GVariantPtr const reply(g_dbus_connection_call_sync(
        connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
        arguments, G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &failure));
    throwIf(failure);
    unsigned result = 0;
    g_variant_get(reply.get(), "(u)", &result);
    return result;
}

void HardwareManagerService::announceStructureChange() {
    hardwaremanager__emit_shm_structure_changed(skeleton_.get());
}

gboolean HardwareManagerService::onInitialized(hardwaremanager* skeleton, GDBusMethodInvocation* invocation,
                                               gpointer self) {
    try {
        auto const state = static_cast<HardwareManagerService*>(self)->answer_();
        hardwaremanager__complete_initialized(skeleton, invocation, state);
    } catch (std::exception const& error) {
        g_dbus_method_invocation_return_dbus_error(invocation, "org.qel.Error", error.what());
    }
    return TRUE;
}

void HardwareManagerService::onClosed(GDBusConnection* /*connection*/, gboolean /*byPeer*/, GError* /*error*/,
                                      gpointer self) {
    if (auto const& onLost = static_cast<HardwareManagerService*>(self)->onLost_) {
        onLost();
    }
}

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/unit/HardwareManagerService.h"

#include <stdexcept>
#include <utility>

namespace qel::tools {

namespace {

constexpr char busName[] = "org.qel.HardwareManager";
constexpr char objectPath[] = "/";

void throwIf(GError* failure) {
    if (GErrorPtr const error{failure}) {
        throw std::runtime_error(std::string("the system bus cannot be used: ") + error->message);
    }
}

} // namespace

HardwareManagerService::HardwareManagerService(std::function<void()> onOwned,
                                               std::function<void(std::string const&)> onLost)
    : onOwned_(std::move(onOwned)),
      onLost_(std::move(onLost)) {
    GError* failure = nullptr;
    connection_.reset(g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, &failure));
    throwIf(failure);
    // A bus that goes away shall end the program in order, not by the signal that GLib would raise.
    g_dbus_connection_set_exit_on_close(connection_.get(), FALSE);
    skeleton_.reset(hardwaremanager__skeleton_new());
    g_signal_connect(skeleton_.get(), "handle-initialized", G_CALLBACK(onInitialized), this);
    g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(skeleton_.get()), connection_.get(),
                                     objectPath, &failure);
    throwIf(failure);
    name_ = g_bus_own_name_on_connection(connection_.get(), busName, G_BUS_NAME_OWNER_FLAGS_DO_NOT_QUEUE,
                                         onNameAcquired, onNameLost, this, nullptr);
}

HardwareManagerService::~HardwareManagerService() {
    if (skeleton_) {
        g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(skeleton_.get()));
    }
    if (name_ != 0) {
        g_bus_unown_name(name_);
        g_dbus_connection_flush_sync(connection_.get(), nullptr, nullptr);
    }
}

void HardwareManagerService::announceStructureChange() {
    hardwaremanager__emit_shm_structure_changed(skeleton_.get());
}

gboolean HardwareManagerService::onInitialized(hardwaremanager* skeleton, GDBusMethodInvocation* invocation,
                                               gpointer self) {
    hardwaremanager__complete_initialized(skeleton, invocation,
                                          static_cast<HardwareManagerService*>(self)->isInitialized_ ? 1 : 0);
    return TRUE;
}

void HardwareManagerService::onNameAcquired(GDBusConnection* /*connection*/, gchar const* /*name*/,
                                            gpointer self) {
    auto& service = *static_cast<HardwareManagerService*>(self);
    service.isOwned_ = true;
    service.onOwned_();
}

void HardwareManagerService::onNameLost(GDBusConnection* /*connection*/, gchar const* name, gpointer self) {
    auto const& service = *static_cast<HardwareManagerService*>(self);
    service.onLost_(service.isOwned_ ? std::string("the name ") + name + " on the system bus is lost"
                                     : std::string("another process serves ") + name + " on the system bus");
}

} // namespace qel::tools

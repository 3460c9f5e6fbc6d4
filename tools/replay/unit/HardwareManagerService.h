// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The hardware manager on the system bus.
#pragma once

#include "tools/common/GLib.h"

#include "hardwaremanager/hardwaremanager.h"

#include <functional>
#include <string>

namespace qel::tools {

/// Serves org.qel.HardwareManager at "/": answers that it is not initialised until told otherwise, and
/// announces changes of structure. Only one process can own the name, so whoever owns it may create the
/// region.
///
/// Threads: bound to the thread that runs the default main context.
class HardwareManagerService {
public:
    /// @param onOwned called once the name is owned
    /// @param onLost  called with the reason when it cannot be had, or is lost later
    /// @throws std::runtime_error when there is no system bus
    HardwareManagerService(std::function<void()> onOwned, std::function<void(std::string const&)> onLost);
    ~HardwareManagerService();
    HardwareManagerService(HardwareManagerService const&) = delete;
    HardwareManagerService& operator=(HardwareManagerService const&) = delete;

    /// From now on the answer is that the region is complete and active.
    void setInitialized() { isInitialized_ = true; }

    /// Sends the signal that tells readers to look for points anew.
    void announceStructureChange();

private:
    static gboolean onInitialized(hardwaremanager* skeleton, GDBusMethodInvocation* invocation,
                                  gpointer self);
    static void onNameAcquired(GDBusConnection* connection, gchar const* name, gpointer self);
    static void onNameLost(GDBusConnection* connection, gchar const* name, gpointer self);

    std::function<void()> onOwned_;
    std::function<void(std::string const&)> onLost_;
    bool isInitialized_ = false;
    bool isOwned_ = false;
    GObjectPtr<GDBusConnection> connection_;
    GObjectPtr<hardwaremanager> skeleton_;
    guint name_ = 0;
};

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The hardware manager on the system bus.
#pragma once

#include "reader/GLibPtr.h"

#include <gio/gio.h>

#include <functional>

// NOLINTNEXTLINE(bugprone-reserved-identifier): the name that the generated skeleton declares
using hardwaremanager = struct _hardwaremanager;

namespace qel::tools {

/// Serves org.qel.HardwareManager at "/", through a connection of its own. Only one process can own the name, so the
/// owner may create the region.
///
/// The generated D-Bus types can exist once per process: a program that takes the reader from the shared library must
/// run this in another process.
///
/// Threads: thread-safe, except that no thread may iterate the main context during destruction.
class HardwareManagerService {
public:
    /// Connects to the bus and exports the interface; the name is not owned yet. Calls are answered by the main context
    /// that is the thread's default one now.
    /// @param answer what "initialized" returns, 1 for "initialised"; if it throws a std::exception, the caller gets the
    ///               D-Bus error org.qel.Error with its text
    /// @param onLost called by that main context if the connection is closed by the bus; must not throw
    /// @throws std::runtime_error if there is no system bus
    explicit HardwareManagerService(std::function<int()> answer, std::function<void()> onLost = nullptr);

    /// Gives up the name and stops serving.
    ~HardwareManagerService();
    HardwareManagerService(HardwareManagerService const&) = delete;
    HardwareManagerService& operator=(HardwareManagerService const&) = delete;

    /// Takes the name; owned when the call returns.
    /// @throws std::runtime_error if another process owns it, the policy of the bus refuses it, or the bus does not
    ///         answer; the text says what to do
    void ownName();

    /// Gives the name up.
    /// @throws std::runtime_error if the bus does not answer
    void releaseName();

    /// Sends shmStructureChanged, which tells readers to update their index.
    void announceStructureChange();

    /// The connection that is served, owned by the service.
    GDBusConnection* connection() const { return connection_.get(); }

private:
    static gboolean onInitialized(hardwaremanager* skeleton, GDBusMethodInvocation* invocation,
                                  gpointer self);
    static void onClosed(GDBusConnection* connection, gboolean byPeer, GError* error, gpointer self);

    unsigned callBus(char const* method, GVariant* arguments);

    std::function<int()> answer_;
    std::function<void()> onLost_;
    shm::GObjectPtr<GDBusConnection> connection_;
    shm::GObjectPtr<hardwaremanager> skeleton_;
};

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A hardware manager for tests.
#pragma once

#include "reader/GLibPtr.h"
#include "tests/support/MainLoopThread.h"

#include <gio/gio.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

// NOLINTNEXTLINE(bugprone-reserved-identifier): the name that the generated skeleton declares
using hardwaremanager = struct _hardwaremanager;

namespace qel::test {

/// Serves org.qel.HardwareManager at "/" on the bus that DBUS_SYSTEM_BUS_ADDRESS names, through a connection
/// and a thread of its own. Answers 1 ("initialised") at once unless told otherwise.
///
/// It brings the generated D-Bus types into the process, and they can be there only once: a program that
/// takes the reader from the shared library runs this in a process of its own.
///
/// Threads: thread-safe.
class HardwareManagerService {
public:
    /// @param present whether to own the bus name from the start
    /// Throws std::runtime_error when the bus cannot be reached or the name has another owner.
    explicit HardwareManagerService(bool present = true);
    ~HardwareManagerService();
    HardwareManagerService(HardwareManagerService const&) = delete;
    HardwareManagerService& operator=(HardwareManagerService const&) = delete;

    /// Takes or gives up the well-known bus name; done when the call returns.
    void ownName();
    void releaseName();

    /// What "initialized" answers; with a function, by the number of the call (1 is the first).
    void setAnswer(int state);
    void setAnswer(std::function<int(unsigned int call)> answer);

    /// Makes "initialized" fail with this message; "" lets it succeed again.
    void setError(std::string message);

    /// How long each answer takes.
    void setDelay(std::chrono::milliseconds delay);

    /// How often "initialized" was called.
    unsigned int calls() const;

    /// Waits until "initialized" was called that often; false when it did not come to that in time.
    bool waitForCalls(unsigned int calls, std::chrono::milliseconds timeout = std::chrono::seconds(20)) const;

    /// Sends the signal "shmStructureChanged" of the interface, or any other signal without arguments.
    void emitStructureChanged();
    void emitSignal(std::string const& path, std::string const& interface, std::string const& name);

private:
    static int onInitialized(hardwaremanager* skeleton, GDBusMethodInvocation* invocation, void* service);
    void callBus(char const* method, GVariant* arguments, unsigned int expected);

    mutable std::mutex mutex_; // guards the five below
    mutable std::condition_variable changed_;
    std::function<int(unsigned int)> answer_;
    std::string error_;
    std::chrono::milliseconds delay_{0};
    unsigned int calls_ = 0;
    bool closing_ = false;

    shm::GObjectPtr<GDBusConnection> connection_;
    shm::GObjectPtr<hardwaremanager> skeleton_;
    std::unique_ptr<MainLoopThread> loop_;
};

} // namespace qel::test

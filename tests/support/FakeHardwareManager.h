// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A hardware manager for tests.
#pragma once

#include "tests/support/MainLoopThread.h"
#include "tools/hardwaremanager/HardwareManagerService.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace qel::test {

/// Runs the service on a thread of its own. It answers 1 ("initialised") at once, unless told otherwise.
///
/// Threads: thread-safe.
class FakeHardwareManager {
public:
    /// @param present whether to own the bus name from the start
    /// @throws std::runtime_error if the bus cannot be reached or the name has another owner
    explicit FakeHardwareManager(bool present = true);
    ~FakeHardwareManager();
    FakeHardwareManager(FakeHardwareManager const&) = delete;
    FakeHardwareManager& operator=(FakeHardwareManager const&) = delete;

    /// Takes or gives up the bus name; done when the call returns.
    void ownName() { service_->ownName(); }
    void releaseName() { service_->releaseName(); }

    /// What "initialized" answers; a function gets the number of the call, from 1.
    void setAnswer(int state);
    void setAnswer(std::function<int(unsigned int call)> answer);

    /// Makes "initialized" fail with this message; "" lets it succeed again.
    void setError(std::string message);

    /// How long each answer takes.
    void setDelay(std::chrono::milliseconds delay);

    /// How often "initialized" was called.
    unsigned int calls() const;

    /// Waits until "initialized" was called that often.
    /// @return false on timeout
    bool waitForCalls(unsigned int calls, std::chrono::milliseconds timeout = std::chrono::seconds(20)) const;

    /// Sends "shmStructureChanged", or any other signal without arguments.
    void emitStructureChanged();
    void emitSignal(std::string const& path, std::string const& interface, std::string const& name);

private:
    int answer();

    mutable std::mutex mutex_; // guards the five below
    mutable std::condition_variable changed_;
    std::function<int(unsigned int)> answer_;
    std::string error_;
    std::chrono::milliseconds delay_{0};
    unsigned int calls_ = 0;
    bool closing_ = false;

    std::optional<tools::HardwareManagerService> service_;
    std::unique_ptr<MainLoopThread> loop_;
};

} // namespace qel::test

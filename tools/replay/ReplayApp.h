// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Runs a replay on the main loop.
#pragma once

#include "tools/common/GLib.h"
#include "tools/replay/ISession.h"
#include "tools/replay/ReplayLog.h"
#include "tools/replay/unit/HardwareManagerService.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qel::tools {

/// Takes the hardware manager's name, then publishes the unit and takes each step of the session when it is
/// due.
///
/// Threads: bound to the main thread.
class ReplayApp {
public:
    /// @param onStructureChanged to be called after each change of the active structure
    using MakeSession = std::function<std::unique_ptr<ISession>(std::function<void()> onStructureChanged)>;

    /// @param makeSession called once, at once
    /// @param log must outlive the object
    /// @param speed recorded seconds per second; 0: as fast as possible
    /// @param isHeld stay after the last step until a signal comes
    /// @throws std::runtime_error when there is no system bus
    ReplayApp(MakeSession const& makeSession, ReplayLog& log, double speed, bool isHeld);
    ~ReplayApp();
    ReplayApp(ReplayApp const&) = delete;
    ReplayApp& operator=(ReplayApp const&) = delete;

    /// Returns when all is replayed or a signal has come.
    /// @throws std::runtime_error when the name or the region cannot be had, or the name is lost
    void run();

private:
    using Clock = std::chrono::steady_clock;

    void begin();
    void tellWhenActive();
    void arm();
    void onTimer();
    void fail(std::string const& reason);

    ReplayLog& log_;
    double speed_;
    bool isHeld_;
    std::unique_ptr<ISession> session_;
    GMainLoopPtr loop_;
    std::optional<HardwareManagerService> service_;
    std::vector<Source> signals_;
    guint timer_ = 0; // 0: not armed
    Clock::time_point start_;
    std::string reason_ = "ended by a signal"; // until no step is left
    std::optional<std::string> failure_;
};

} // namespace qel::tools

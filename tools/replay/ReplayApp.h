// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Runs a replay on the main loop.
#pragma once

#include "tools/hardwaremanager/HardwareManagerService.h"
#include "tools/hardwaremanager/SignalSource.h"
#include "tools/replay/IPlayer.h"
#include "tools/replay/ReplayLog.h"
#include "tools/replay/control/ControlCommands.h"
#include "tools/replay/control/ControlSocket.h"

#include <glib.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>

namespace qel::tools {

/// Takes the hardware manager's name, then publishes the unit and takes each step of the player when it is due. Meanwhile
/// it answers commands, if it has a control socket.
///
/// Threads: thread-bound to the main thread.
class ReplayApp {
public:
    /// @param onStructureChanged to be called after each change of the active structure
    using MakePlayer = std::function<std::unique_ptr<IPlayer>(std::function<void()> onStructureChanged)>;

    struct Settings {
        double speed = 1.0;  ///< recorded seconds per second; 0: as fast as possible
        bool isHeld = false; ///< stay after the last step until a signal arrives
        std::string control; ///< path of the socket for commands; "" for none
    };

    /// @param makePlayer called once, immediately; its player has a setter if there is a control socket
    /// @param log must outlive the object
    /// @throws std::runtime_error if there is no system bus
    ReplayApp(MakePlayer const& makePlayer, ReplayLog& log, Settings settings);
    ~ReplayApp();
    ReplayApp(ReplayApp const&) = delete;
    ReplayApp& operator=(ReplayApp const&) = delete;

    /// Returns when everything is replayed or a signal has arrived.
    /// @throws std::exception if another process owns the name, the control socket or the region cannot be created, a
    ///         step fails or the bus is lost
    void run();

private:
    using Clock = std::chrono::steady_clock;

    void openControl();
    std::uint64_t dueNow() const;
    void arm();
    void onTimer();
    void fail(std::string const& reason);

    ReplayLog& log_;
    Settings settings_;
    bool isInitialized_ = false; // once the region has been active
    bool isOver_ = false;
    std::unique_ptr<IPlayer> player_;
    std::optional<HardwareManagerService> service_;
    std::optional<ControlCommands> commands_;
    std::optional<ControlSocket> control_;
    std::list<SignalSource> signals_;
    guint timer_ = 0; // 0: not armed
    Clock::time_point start_;
    std::optional<Clock::time_point> end_;     // of the last step
    std::uint64_t lastDue_ = 0;                // of the step taken last
    std::string reason_ = "ended by a signal"; // until no step is left
    std::optional<std::string> failure_;
};

} // namespace qel::tools

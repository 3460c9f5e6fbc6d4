// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Plays a capture.
#pragma once

#include "tools/replay/IPlayer.h"
#include "tools/replay/ReplayLog.h"
#include "tools/replay/capture/CapturedRegion.h"

#include "inspect/capture/CaptureReader.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace shm {
class QelStateLedThread;
}

namespace qel::tools {

/// Stores the samples of a capture in the region, one per step, and shows the global state on the status LED.
///
/// Threads: thread-bound to the thread that made it.
class CapturePlayer : public IPlayer {
public:
    struct Parts {
        std::string file;
        std::uint64_t samples =
            0; ///< how many to play, 1 or more; the file must hold as many, of whole regions
    };

    /// Publishes nothing yet.
    /// @param log must outlive the player
    /// @param onStructureChanged called after each sample that changes links or ids, except the first
    /// @throws inspect::CaptureError if the file cannot be read; begin() and step() throw it too
    CapturePlayer(Parts parts, ReplayLog& log, std::function<void()> onStructureChanged);
    ~CapturePlayer() override;

    /// Creates the region, stores the first sample in it, and starts the LED.
    void begin() override;

    std::optional<std::uint64_t> due() const override;

    void step() override;
    bool isActive() const override { return isActive_; }
    eStatus_Bits globalState() const override { return globalState_; }

private:
    RegionChange take(inspect::CaptureSample const& sample);
    void readNext();
    void followGlobalState(inspect::CaptureSample const& sample);

    Parts parts_;
    ReplayLog& log_;
    std::function<void()> onStructureChanged_;
    inspect::CaptureReader reader_;
    std::optional<inspect::CaptureSample> next_;
    std::uint64_t firstTime_ = 0; // ms since the capture began
    bool isActive_ = false;
    eStatus_Bits globalState_ = eStatus_On;
    std::unique_ptr<CapturedRegion> region_; // from begin() on
    std::unique_ptr<shm::QelStateLedThread> led_;
};

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// One replay of a recorded region.
#pragma once

#include "tools/replay/ISession.h"
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

/// Takes the samples of a recording into the region, one step each, and shows the global state on the status LED.
///
/// Threads: bound to one thread.
class CapturePlayer : public ISession {
public:
    struct Parts {
        std::string file;
        std::uint64_t samples = 0; ///< how many to play, 1 or more; the file holds as many, of whole regions
    };

    /// Publishes nothing yet.
    /// @param log must outlive the player
    /// @param onStructureChanged called after each sample behind the first one that changes links or ids
    /// @throws inspect::CaptureError when the file cannot be read; so do begin() and step()
    CapturePlayer(Parts parts, ReplayLog& log, std::function<void()> onStructureChanged);
    ~CapturePlayer() override;

    /// Creates the region, makes it equal to the first sample, and starts the LED.
    void begin() override;

    /// The first sample is there from the start on.
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
    std::uint64_t firstTime_ = 0; // ms since the recording began
    bool isActive_ = false;
    eStatus_Bits globalState_ = eStatus_On;
    std::unique_ptr<CapturedRegion> region_; // from begin() on
    std::unique_ptr<shm::QelStateLedThread> led_;
};

} // namespace qel::tools

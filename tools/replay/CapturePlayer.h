// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Plays a capture.
#pragma once

#include "tools/replay/IPlayer.h"
#include "tools/replay/ReplayLog.h"
#include "tools/replay/capture/CaptureSamples.h"
#include "tools/replay/capture/CapturedRegion.h"
#include "tools/replay/unit/Stamps.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace shm {
class QelStateLedThread;
}

namespace qel::tools {

/// Stores the samples of a capture in the region, one per step, and shows the global state on the status LED. Samples
/// are stored byte for byte, except for links that lead back, which are cut, and for times if these are moved.
///
/// Threads: thread-bound to the thread that made it.
class CapturePlayer : public IPlayer {
public:
    struct Parts {
        SampleSelection samples;
        Stamps stamps;
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
    std::string endReason() const override;
    bool isActive() const override { return isActive_; }
    eStatus_Bits globalState() const override { return globalState_; }

private:
    RegionChange take(ReplaySample const& sample);
    inspect::Image stamped(ReplaySample const& sample) const;
    void followGlobalState(ReplaySample const& sample);

    Parts parts_;
    ReplayLog& log_;
    std::function<void()> onStructureChanged_;
    CaptureSamples samples_;
    std::size_t cut_ = 0; // links of the sample taken last
    bool isActive_ = false;
    eStatus_Bits globalState_ = eStatus_On;
    std::unique_ptr<CapturedRegion> region_; // from begin() on
    std::unique_ptr<shm::QelStateLedThread> led_;
};

} // namespace qel::tools

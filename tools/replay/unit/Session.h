// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// One replay from the first row to the last.
#pragma once

#include "tools/replay/ISession.h"
#include "tools/replay/ReplayLog.h"
#include "tools/replay/csv/LimitSet.h"
#include "tools/replay/csv/RecordingFeed.h"
#include "tools/replay/csv/Recordings.h"
#include "tools/replay/csv/Replayer.h"
#include "tools/replay/unit/LiveUnit.h"
#include "tools/replay/unit/Schedule.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace qel::tools {

/// Takes the rows in turn into the unit and lets points come and go in between. Knows replay time only; its
/// caller decides when a step is taken.
///
/// Threads: bound to one thread.
class Session : public ISession {
public:
    struct Parts {
        Recordings recordings;
        LimitSet limits;
        Schedule schedule;
        Replayer::Options replay;
    };

    /// Publishes nothing yet. The socket group is there only when the schedule says so. What the schedule
    /// changes, a recording must feed.
    /// @param log must outlive the session
    /// @param onStructureChanged called after each change of the active structure
    Session(Parts parts, ReplayLog& log, std::function<void()> onStructureChanged);

    /// Creates the region, lays out the unit and activates it.
    /// @throws std::exception when there is no region or no room in it
    void begin() override;

    /// When the next step is due, in ms after the start; nothing after the last row.
    std::optional<std::uint64_t> due() const override;

    /// Takes the next step: one row, or one change of structure that is due before it.
    void step() override;

    bool isActive() const override { return unit_ != nullptr; }
    eStatus_Bits globalState() const override { return globalState_; }

private:
    bool isChangeNext() const;
    Structure structureNow() const;
    void apply(Change const& change);
    void apply(Replayer::Step const& step);
    void propagate(std::uint64_t time);
    std::uint64_t timeOf(Change const& change) const;

    Parts parts_;
    ReplayLog& log_;
    std::function<void()> onStructureChanged_;
    Replayer replayer_;
    std::vector<RecordingFeed> feeds_; // by recording
    std::vector<std::size_t> missing_; // by recording: empty cells of its last row
    std::vector<PointId> absent_;      // points that have values but are not there now
    eStatus_Bits globalState_ = eStatus_On;
    std::unique_ptr<LiveUnit> unit_; // from begin() on
};

} // namespace qel::tools

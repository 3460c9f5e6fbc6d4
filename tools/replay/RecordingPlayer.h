// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Plays recordings.
#pragma once

#include "tools/replay/IPlayer.h"
#include "tools/replay/ReplayLog.h"
#include "tools/replay/Schedule.h"
#include "tools/replay/control/IValueSetter.h"
#include "tools/replay/csv/Limits.h"
#include "tools/replay/csv/Recording.h"
#include "tools/replay/csv/RecordingFeed.h"
#include "tools/replay/csv/Rows.h"
#include "tools/replay/unit/LiveUnit.h"
#include "tools/replay/unit/Stamps.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace qel::tools {

/// Delivers the rows to the unit, one per step, and adds and removes points as scheduled. Values that are set by hand
/// keep their number and state, with the time of each row, until they are released.
///
/// Threads: thread-bound to the thread that made it.
class RecordingPlayer : public IPlayer, public IValueSetter {
public:
    struct Parts {
        Recordings recordings;
        LimitSet limits;
        Schedule schedule;
        RowSelection rows;
        Stamps stamps;
    };

    /// Publishes nothing yet. The socket group is there only if the schedule adds or removes it.
    /// @param parts a recording must feed each point of the schedule
    /// @param log must outlive the player
    /// @param onStructureChanged called after each change of the active structure
    RecordingPlayer(Parts parts, ReplayLog& log, std::function<void()> onStructureChanged);

    /// Creates the region, lays out the unit and activates it.
    void begin() override;
    std::optional<std::uint64_t> due() const override;

    /// Takes the next row, or the change of structure that is due before it.
    void step() override;

    std::string endReason() const override;
    bool isActive() const override { return unit_ != nullptr; }
    eStatus_Bits globalState() const override { return globalState_; }

    IValueSetter* setter() override { return this; }
    std::vector<std::string> set(Assignment const& assignment, std::uint64_t due) override;
    std::vector<std::string> unset(inspect::ValuePattern const& pattern, std::uint64_t due) override;

private:
    /// What a user has set.
    struct ByHand {
        double number;
        eStatus_Bits state;
        bool isOwnState; ///< of a point; no row replaces it, but the states below the point do
    };

    bool isChangeNext() const;
    Structure structureNow() const;
    void apply(Change const& change);
    void apply(MergedRows::Step const& step, std::uint64_t due);
    bool deliver(Reading const& reading);
    void deliverByHand(long long svid, ByHand const& byHand, std::uint64_t time);
    void propagate(std::uint64_t time);
    bool isRecorded(long long svid) const;
    std::uint64_t stampOf(long long svid, std::uint64_t due) const;

    Parts parts_;
    ReplayLog& log_;
    std::function<void()> onStructureChanged_;
    MergedRows rows_;
    std::vector<RecordingFeed> feeds_;                   // by recording
    std::vector<std::size_t> missing_;                   // by recording: empty cells of its last row
    std::vector<PointId> absent_;                        // points with values that are not in the unit now
    std::map<long long, ByHand> byHand_;                 // by sensor id of the value
    std::unordered_map<long long, Reading> lastReading_; // of the recordings, by sensor id of the value
    eStatus_Bits globalState_ = eStatus_On;
    std::unique_ptr<LiveUnit> unit_; // from begin() on
};

} // namespace qel::tools

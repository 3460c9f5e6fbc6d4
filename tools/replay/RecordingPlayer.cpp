// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/RecordingPlayer.h"

#include <algorithm>
#include <utility>

namespace qel::tools {

namespace {

bool contains(std::vector<PointId> const& points, PointId const& point) {
    return std::find(points.begin(), points.end(), point) != points.end();
}

} // namespace

RecordingPlayer::RecordingPlayer(Parts parts, ReplayLog& log, std::function<void()> onStructureChanged)
    : parts_(std::move(parts)),
      log_(log),
      onStructureChanged_(std::move(onStructureChanged)),
      rows_(parts_.recordings, parts_.rows),
      missing_(parts_.recordings.all().size(), 0) {
    for (auto const& table : parts_.recordings.all()) {
        feeds_.emplace_back(table, parts_.recordings, parts_.limits);
    }
    if (parts_.schedule.isToCome(sensorPoint)) {
        absent_.push_back(sensorPoint);
    }
    if (!parts_.schedule.isToGo(socketGroup)) {
        absent_.push_back(socketGroup);
    }
}

void RecordingPlayer::begin() {
    auto const structure = structureNow();
    unit_ = std::make_unique<LiveUnit>();
    unit_->build(structure, rows_.startTime(0));
    log_.started(structure.points().size(), structure.valueCount(), parts_.recordings.all().size(),
                 parts_.recordings.rowCount());
}

std::optional<std::uint64_t> RecordingPlayer::due() const {
    auto const row = rows_.due();
    return row && isChangeNext() ? parts_.schedule.due() : row;
}

// At the same time the change goes first, so that an added point gets the readings of that time.
bool RecordingPlayer::isChangeNext() const {
    auto const change = parts_.schedule.due();
    return change && *change <= rows_.due().value_or(0);
}

void RecordingPlayer::step() {
    if (isChangeNext()) {
        apply(parts_.schedule.next());
    } else {
        apply(rows_.next());
    }
}

Structure RecordingPlayer::structureNow() const {
    std::vector<ValueId> values;
    for (auto const& feed : feeds_) {
        for (auto const& value : feed.values()) {
            if (!contains(absent_, value.point)) {
                values.push_back(value);
            }
        }
    }
    return Structure(values);
}

// By the clock of the recording that feeds the point.
std::uint64_t RecordingPlayer::timeOf(Change const& change) const {
    auto const feed = std::find_if(feeds_.begin(), feeds_.end(), [&](RecordingFeed const& candidate) {
        return candidate.feeds(change.point);
    });
    return rows_.startTime(static_cast<std::size_t>(feed - feeds_.begin())) + change.due;
}

void RecordingPlayer::apply(Change const& change) {
    if (change.comes) {
        absent_.erase(std::remove(absent_.begin(), absent_.end(), change.point), absent_.end());
    } else {
        absent_.push_back(change.point);
    }
    auto const time = timeOf(change);
    auto const structure = structureNow();
    if (unit_->change(structure, time)) {
        onStructureChanged_();
    }
    log_.changed(time, change, structure.points().size(), structure.valueCount());
    propagate(time);
}

void RecordingPlayer::apply(MergedRows::Step const& step) {
    auto const result = feeds_.at(step.recording).convert(step.row);
    log_.countStep();
    for (auto const& reading : result.readings) {
        if (!unit_->structure().has(reading.svid)) {
            continue;
        }
        if (unit_->deliver(reading)) {
            log_.countUpdates(1);
        } else {
            log_.countRefused();
        }
    }
    for (auto const& crossing : result.crossings) {
        if (unit_->structure().has(crossing.after.svid)) {
            log_.crossed(crossing);
        }
    }
    auto& missing = missing_.at(step.recording);
    if (result.missing != missing) {
        missing = result.missing;
        log_.missing(step.row.time, parts_.recordings.all()[step.recording].path(), missing,
                     step.row.cells.size());
    }
    propagate(step.row.time);
}

void RecordingPlayer::propagate(std::uint64_t time) {
    auto const state = unit_->propagate();
    if (state != globalState_) {
        log_.globalState(time, globalState_, state);
        globalState_ = state;
    }
}

} // namespace qel::tools

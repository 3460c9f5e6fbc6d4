// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/RecordingPlayer.h"

#include "format/KeyTable.h"
#include "inspect/naming/ValuePath.h"
#include "region/SvidParts.h"

#include <algorithm>
#include <utility>

namespace qel::tools {

namespace {

bool contains(std::vector<PointId> const& points, PointId const& point) {
    return std::find(points.begin(), points.end(), point) != points.end();
}

std::vector<long long> sortedSvids(Structure const& structure) {
    std::vector<long long> svids(structure.svids().begin(), structure.svids().end());
    std::sort(svids.begin(), svids.end());
    return svids;
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
    parts_.stamps.begin();
    unit_->build(structure, parts_.stamps.of({rows_.startTime(0), 0}));
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
        auto const due = rows_.due().value();
        apply(rows_.next(), due);
    }
}

std::string RecordingPlayer::endReason() const {
    return rows_.isStopped() ? log_.stoppedEarly(rows_.total()) : log_.allReplayed();
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

// By the clock of the recording that feeds the point, of the first one for a point without a recording.
std::uint64_t RecordingPlayer::stampOf(long long svid, std::uint64_t due) const {
    auto const feed = std::find_if(feeds_.begin(), feeds_.end(), [&](RecordingFeed const& candidate) {
        auto const values = candidate.values();
        return std::any_of(values.begin(), values.end(), [&](ValueId const& value) {
            return pointSvid(value.point) == shm::pointSvid(svid);
        });
    });
    auto const recording = feed == feeds_.end() ? 0 : static_cast<std::size_t>(feed - feeds_.begin());
    return parts_.stamps.of({rows_.startTime(recording) + due, due});
}

void RecordingPlayer::apply(Change const& change) {
    if (change.comes) {
        absent_.erase(std::remove(absent_.begin(), absent_.end(), change.point), absent_.end());
    } else {
        absent_.push_back(change.point);
    }
    auto const time = stampOf(pointSvid(change.point), change.due);
    auto const structure = structureNow();
    if (unit_->change(structure, time)) {
        onStructureChanged_();
    }
    log_.changed(time, change, structure.points().size(), structure.valueCount());
    for (auto const& [svid, byHand] : byHand_) {
        if (shm::pointSvid(svid) == pointSvid(change.point)) {
            deliverByHand(svid, byHand, time); // a point that comes back is new
        }
    }
    propagate(time);
}

void RecordingPlayer::apply(MergedRows::Step const& step, std::uint64_t due) {
    auto result = feeds_.at(step.recording).convert(step.row);
    auto const time = parts_.stamps.of({step.row.time, due});
    log_.countStep();
    for (auto& reading : result.readings) {
        reading.time = time;
        lastReading_[reading.svid] = reading;
        if (!unit_->structure().has(reading.svid)) {
            continue;
        }
        if (deliver(reading)) {
            log_.countUpdates(1);
        } else {
            log_.countRefused();
        }
    }
    for (auto& crossing : result.crossings) {
        crossing.after.time = time;
        if (unit_->structure().has(crossing.after.svid)) {
            log_.crossed(crossing);
        }
    }
    auto& missing = missing_.at(step.recording);
    if (result.missing != missing) {
        missing = result.missing;
        log_.missing(time, parts_.recordings.all()[step.recording].path(), missing, step.row.cells.size());
    }
    propagate(time);
}

bool RecordingPlayer::deliver(Reading const& reading) {
    auto const byHand = byHand_.find(reading.svid);
    if (byHand == byHand_.end()) {
        return unit_->deliver(reading);
    }
    return unit_->deliver({reading.svid, reading.time, byHand->second.number, byHand->second.state});
}

void RecordingPlayer::deliverByHand(long long svid, ByHand const& byHand, std::uint64_t time) {
    if (unit_->structure().has(svid)) {
        unit_->deliver({svid, time, byHand.number, byHand.state});
    }
}

bool RecordingPlayer::isRecorded(long long svid) const {
    return std::any_of(feeds_.begin(), feeds_.end(), [&](RecordingFeed const& feed) {
        auto const values = feed.values();
        return std::any_of(values.begin(), values.end(),
                           [&](ValueId const& value) { return valueSvid(value) == svid; });
    });
}

std::vector<std::string> RecordingPlayer::set(Assignment const& assignment, std::uint64_t due) {
    std::vector<std::string> names;
    std::uint64_t time = 0;
    for (auto const svid : sortedSvids(unit_->structure())) {
        auto const key = shm::valueKey(svid);
        if (!assignment.pattern.matches(shm::pointSvid(svid), key)) {
            continue;
        }
        bool const isEnergy = shm::keyRow(key).kind == shm::KeyKind::Energy; // delivered in Wh
        ByHand const byHand{isEnergy ? assignment.number * shm::energyFactor : assignment.number,
                            assignment.state, !isRecorded(svid)};
        byHand_.insert_or_assign(svid, byHand);
        time = stampOf(svid, due);
        deliverByHand(svid, byHand, time);
        names.push_back(inspect::valuePath(shm::pointSvid(svid), key) + " = " +
                        valueText(key, assignment.number, assignment.state));
        log_.set(time, names.back());
    }
    if (!names.empty()) {
        propagate(time);
    }
    return names;
}

std::vector<std::string> RecordingPlayer::unset(inspect::ValuePattern const& pattern, std::uint64_t due) {
    std::vector<std::string> names;
    std::uint64_t time = 0;
    for (auto entry = byHand_.begin(); entry != byHand_.end();) {
        auto const svid = entry->first;
        auto const key = shm::valueKey(svid);
        if (!pattern.matches(shm::pointSvid(svid), key)) {
            ++entry;
            continue;
        }
        time = stampOf(svid, due);
        if (auto const last = lastReading_.find(svid); last != lastReading_.end()) {
            deliverByHand(svid, {last->second.number, last->second.state, false}, time);
        } else if (entry->second.isOwnState) {
            deliverByHand(svid, {0.0, eStatus_On, true}, time); // as when the point came
        }
        entry = byHand_.erase(entry);
        names.push_back(inspect::valuePath(shm::pointSvid(svid), key));
        log_.unset(time, names.back());
    }
    if (!names.empty()) {
        propagate(time);
    }
    return names;
}

void RecordingPlayer::propagate(std::uint64_t time) {
    for (auto const& [svid, byHand] : byHand_) {
        if (byHand.isOwnState) {
            deliverByHand(svid, byHand, time);
        }
    }
    auto const state = unit_->propagate();
    if (state != globalState_) {
        log_.globalState(time, globalState_, state);
        globalState_ = state;
    }
}

} // namespace qel::tools

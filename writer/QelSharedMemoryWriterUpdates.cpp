// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/QelSharedMemoryWriter.h"

#include "format/ValueKeys.h"
#include "region/LogLine.h"
#include "region/RegionFields.h"
#include "region/SvidParts.h"
#include "states/QelStateLedThread.h"
#include "writer/KeySets.h"
#include "writer/QelShmKeptUpdate.h"
#include "writer/SlotsBySvid.h"
#include "writer/StateChanges.h"
#include "writer/StatePropagation.h"
#include "writer/WriterRecords.h"

#include <log4cpp/Priority.hh>

#include <cstddef>
#include <cstdint>
#include <exception>

namespace shm {

namespace {

std::size_t valuePosition(SlotsBySvid::Point const& point, unsigned short key) {
    std::lock_guard<std::mutex> const lock(point.mutex());
    return point.valuePosition(key);
}

/// Stores the state of a point, then its time, and notes another state.
void storePointState(QelShmMP& mp, eStatus_Bits state, std::uint64_t timestamp, StateChanges& changes) {
    bool const isOther = mp.state != state;
    storeField(mp.state, state);
    storeField(mp.at, timestamp);
    if (isOther) {
        changes.note();
    }
}

/// Computes the slot's address once: compilers compute it for each field of region.values[pos].
record::QelShmMVal& slotOfValue(record::Region& region, std::size_t pos) {
    record::QelShmMVal* const values = region.values;
    return values[pos];
}

/// Stores the time of a value, then its state, and notes another state.
void storeTimeAndState(record::QelShmMVal& mv, std::uint64_t timestamp, eStatus_Bits state,
                       StateChanges& changes) {
    bool const isOther = mv.state != state;
    storeField(mv.at, timestamp);
    storeField(mv.state, state);
    if (isOther) {
        changes.note();
    }
}

void logException() {
    LogLine(writerLog, log4cpp::Priority::ERROR, "updateMV") << "ran into a very exceptional state";
}

} // namespace

void QelSharedMemoryWriter::setActive() {
    if (!isMapped("setActive")) {
        return;
    }
    records_->changes.note();
    auto& root = region()->root;
    auto const before = root.state;
    storeField(root.guid, ROOT_SVID);
    storeField(root.state, eStatus_On);
    storeField(root.unused, 0);
    storeVersion(root, ACTIVE_VERSION);
    LogLine(writerLog, log4cpp::Priority::INFO, "setActive")
        << "root.version = " << static_cast<unsigned int>(ACTIVE_VERSION);
    if (before != eStatus_On && ledThread_) { // the LED may show the former state
        ledThread_->request(eStatus_On);
    }
}

bool QelSharedMemoryWriter::updateMV(long long svid, std::unique_ptr<measval::MeasureValue> value) noexcept {
    try {
        auto const* const point = records_->slots.find(pointSvid(svid));
        if (point == nullptr || !value || region() == nullptr) {
            return false;
        }
        auto const key = valueKey(svid);
        if (isPointStateKey(key)) {
            storePointState(region()->points[point->pos()], value->state(), value->timestamp(),
                            records_->changes);
            return true;
        }
        auto const pos = valuePosition(*point, key);
        if (pos >= MV_COUNT) {
            return false;
        }
        auto& mv = slotOfValue(*region(), pos);
        storeTimeAndState(mv, value->timestamp(), value->state(), records_->changes);
        // Deliberate: a value that is no number still stores its time and state. The old number stays.
        auto const number = value->toDouble();
        if (number.type != measval::Double) {
            return false;
        }
        storeField(mv.value, isEnergyKey(key) ? number.value / energyFactor : number.value);
        return true;
    } catch (std::exception const&) {
        return false;
    } catch (...) {
        logException();
        return false;
    }
}

bool QelSharedMemoryWriter::updateMV(QelShmKeptUpdate& kept, double number, std::uint64_t timestamp,
                                     eStatus_Bits state) noexcept {
    using Target = QelShmKeptUpdate::Target;
    auto* const mapped = region();
    if (kept.generation_ != records_->slots.generation() || mapped == nullptr) {
        return updateLookedUp(kept, number, timestamp, state);
    }
    if (kept.target_ != Target::Value) { // one comparison for most values
        if (kept.target_ == Target::PointState) {
            storePointState(mapped->points[kept.pos_], state, timestamp, records_->changes);
            return true;
        }
        number /= energyFactor;
    }
    auto& mv = slotOfValue(*mapped, kept.pos_);
    storeTimeAndState(mv, timestamp, state, records_->changes);
    storeField(mv.value, number);
    return true;
}

bool QelSharedMemoryWriter::updateLookedUp(QelShmKeptUpdate& kept, double number, std::uint64_t timestamp,
                                           eStatus_Bits state) noexcept {
    using Target = QelShmKeptUpdate::Target;
    try {
        auto const& slots = records_->slots;
        auto const* const point = slots.find(pointSvid(kept.svid_));
        if (point == nullptr || region() == nullptr) {
            return false;
        }
        auto const key = valueKey(kept.svid_);
        bool const isOfPoint = isPointStateKey(key);
        auto const pos = isOfPoint ? point->pos() : valuePosition(*point, key);
        if (pos >= (isOfPoint ? MP_COUNT : MV_COUNT)) {
            return false;
        }
        kept.pos_ = static_cast<std::uint32_t>(pos);
        kept.target_ = isOfPoint ? Target::PointState : isEnergyKey(key) ? Target::Energy : Target::Value;
        kept.generation_ = slots.generation();
    } catch (std::exception const&) {
        return false;
    } catch (...) {
        logException();
        return false;
    }
    return updateMV(kept, number, timestamp, state);
}

void QelSharedMemoryWriter::propagateStates() noexcept {
    auto const* const mapped = region();
    if (mapped == nullptr || !records_->changes.areCombinedInto(mapped->root.state)) {
        propagateChanges();
    }
}

[[gnu::noinline]] // keeps its frame out of propagateStates()
void QelSharedMemoryWriter::propagateChanges() noexcept {
    if (!isMapped("propagateStates")) {
        return;
    }
    auto& changes = records_->changes;
    changes.take();
    try {
        auto& root = region()->root;
        auto const global = StatePropagation(*region()).combineAll();
        changes.setResult(global);
        if (global != root.state) {
            storeField(root.state, global);
            if (ledThread_) {
                ledThread_->request(global);
            }
        }
    } catch (std::exception const&) {
        changes.note(); // the states stored so far stay; the next propagation combines all of them again
    }
}

void QelSharedMemoryWriter::defineState(QelShmMP& mp, std::list<eStatus_Bits>& out) {
    records_->changes.note(); // for what depends on these points
    StatePropagation(*region()).combineSiblings(mp, out);
}

void QelSharedMemoryWriter::statesChanged() noexcept {
    records_->changes.note();
}

} // namespace shm

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

/// The slot at a distance of so many bytes from the region's start. A kept update stores the distance, because going from
/// a position to an address takes as long as a store.
template <typename Slot>
Slot& slotAt(record::Region& region, std::uint32_t offset) {
    auto* const bytes = reinterpret_cast<unsigned char*>(&region);
    return *reinterpret_cast<Slot*>(bytes + offset);
}

void storeValue(record::QelShmMVal& mv, std::uint64_t timestamp, eStatus_Bits state, double number) {
    storeField(mv.at, timestamp);
    storeField(mv.state, state);
    storeField(mv.value, number);
}

template <typename Slot>
std::uint32_t offsetOf(std::size_t table, std::size_t pos) {
    return static_cast<std::uint32_t>(table + pos * sizeof(Slot));
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
    auto* const mapped = region();
    if (kept.generation_ != records_->slots.generation() || mapped == nullptr) {
        return updateOtherwise(kept, number, timestamp, state);
    }
    number /= kept.divisor_;
    auto& mv = slotAt<record::QelShmMVal>(*mapped, kept.offset_);
    if (mv.state == state) { // asked first, which is shorter than to remember the former state
        storeValue(mv, timestamp, state, number);
        return true;
    }
    storeValue(mv, timestamp, state, number);
    records_->changes.note();
    return true;
}

[[gnu::noinline]] // keeps its frame out of updateMV()
bool QelSharedMemoryWriter::updateOtherwise(QelShmKeptUpdate& kept, double number, std::uint64_t timestamp,
                                            eStatus_Bits state) noexcept {
    auto const generation = records_->slots.generation();
    if (kept.generation_ != generation && kept.generation_ != ~generation && !findSlot(kept)) {
        return false;
    }
    if (region() == nullptr) {
        return false;
    }
    if (kept.generation_ == generation) {
        return updateMV(kept, number, timestamp, state);
    }
    storePointState(slotAt<QelShmMP>(*region(), kept.offset_), state, timestamp, records_->changes);
    return true;
}

bool QelSharedMemoryWriter::findSlot(QelShmKeptUpdate& kept) const noexcept {
    try {
        auto const& slots = records_->slots;
        auto const* const point = slots.find(pointSvid(kept.svid_));
        if (point == nullptr) {
            return false;
        }
        auto const key = valueKey(kept.svid_);
        if (isPointStateKey(key)) {
            kept.offset_ = offsetOf<QelShmMP>(offsetof(record::Region, points), point->pos());
            kept.generation_ = ~slots.generation();
            return true;
        }
        auto const pos = valuePosition(*point, key);
        if (pos >= MV_COUNT) {
            return false;
        }
        kept.offset_ = offsetOf<record::QelShmMVal>(offsetof(record::Region, values), pos);
        kept.divisor_ = isEnergyKey(key) ? energyFactor : 1;
        kept.generation_ = slots.generation();
        return true;
    } catch (std::exception const&) {
        return false;
    } catch (...) {
        logException();
        return false;
    }
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

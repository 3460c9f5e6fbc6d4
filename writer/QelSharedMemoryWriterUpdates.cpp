// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/QelSharedMemoryWriter.h"

#include "format/ValueKeys.h"
#include "region/LogLine.h"
#include "region/RegionFields.h"
#include "region/SvidParts.h"
#include "states/QelStateLedThread.h"
#include "writer/KeySets.h"
#include "writer/SlotsBySvid.h"
#include "writer/StatePropagation.h"

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

} // namespace

void QelSharedMemoryWriter::setActive() {
    if (!isMapped("setActive")) {
        return;
    }
    auto& root = region()->root;
    auto const before = root.state;
    storeField(root.guid, ROOT_SVID);
    storeField(root.state, eStatus_On);
    storeField(root.unused, 0);
    storeVersion(root, ACTIVE_VERSION);
    LogLine(writerLog(), log4cpp::Priority::INFO, "setActive")
        << "root.version = " << static_cast<unsigned int>(ACTIVE_VERSION);
    if (before != eStatus_On && ledThread_) { // the LED may show the former state
        ledThread_->request(eStatus_On);
    }
}

bool QelSharedMemoryWriter::updateMV(long long svid, std::unique_ptr<measval::MeasureValue> value) noexcept {
    try {
        auto const* const point = index_->find(pointSvid(svid));
        if (point == nullptr || !value || region() == nullptr) {
            return false;
        }
        auto const key = valueKey(svid);
        if (isPointStateKey(key)) {
            auto& mp = region()->points[point->pos()];
            storeField(mp.state, value->state());
            storeField(mp.at, value->timestamp());
            return true;
        }
        auto const pos = valuePosition(*point, key);
        if (pos >= MV_COUNT) {
            return false;
        }
        auto& mv = region()->values[pos];
        storeField(mv.at, value->timestamp());
        storeField(mv.state, value->state());
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
        LogLine(writerLog(), log4cpp::Priority::ERROR, "updateMV") << "ran into a very exceptional state";
        return false;
    }
}

void QelSharedMemoryWriter::propagateStates() noexcept {
    try {
        if (!isMapped("propagateStates")) {
            return;
        }
        auto& root = region()->root;
        auto const global = StatePropagation(*region()).combineAll();
        if (global != root.state) {
            storeField(root.state, global);
            if (ledThread_) {
                ledThread_->request(global);
            }
        }
    } catch (std::exception const&) {
        // The states stored so far stay. The next propagation combines all of them again.
        return;
    }
}

void QelSharedMemoryWriter::defineState(QelShmMP& mp, std::list<eStatus_Bits>& out) {
    StatePropagation(*region()).combineSiblings(mp, out);
}

} // namespace shm

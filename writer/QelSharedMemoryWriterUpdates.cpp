#include "writer/QelSharedMemoryWriter.h"

#include "domain/SensorIdentifier.h"
#include "region/LogLine.h"
#include "region/RegionFields.h"
#include "states/QelStateLedThread.h"
#include "writer/ValueKeys.h"

#include <log4cpp/Priority.hh>

#include <exception>

namespace shm {

namespace {

constexpr double thousandths = 1000.0;

unsigned int valuePosition(MPDef& point, unsigned short key) {
    std::lock_guard<std::mutex> const lock(point.mutex);
    auto const known = point.mvs.find(key);
    return known == point.mvs.end() ? NO_POSITION : known->second;
}

/// Deliberate: a circuit that is switched off stands for an alarm above it, while it shows "Off" itself.
eStatus_Bits reportedState(long long svid, eStatus_Bits state) {
    if (state != eStatus_Off) {
        return state;
    }
    auto const parts = SensorIdentifier::getSensorIdParts(svid);
    bool const isCircuit = parts[SensorIdentifier::Kind] == SensorType::Electrical &&
                           parts[SensorIdentifier::Circuit] != -1 && parts[SensorIdentifier::Socket] == -1;
    return isCircuit ? eStatus_Alarm : state;
}

} // namespace

void QelSharedMemoryWriter::setActive() {
    if (!isMapped("setActive")) {
        return;
    }
    auto& root = region()->root;
    storeField(root.guid, ROOT_SVID);
    storeField(root.state, eStatus_On);
    storeField(root.unused, 0);
    storeVersion(root, ACTIVE_VERSION);
    LogLine(writerLog(), log4cpp::Priority::INFO, "setActive")
        << "root.version = " << static_cast<unsigned int>(ACTIVE_VERSION);
}

bool QelSharedMemoryWriter::updateMV(long long svid, std::unique_ptr<measval::MeasureValue> value) noexcept {
    try {
        auto const known = points_.find(pointSvid(svid));
        if (!value || known == points_.end()) {
            return false;
        }
        auto& definition = known->second;
        auto* const mp = pointAt(definition.pos);
        if (mp == nullptr) {
            return false;
        }
        auto const key = SensorIdentifier::getKey(svid);
        if (isPointStateKey(key)) {
            storeField(mp->state, value->state());
            storeField(mp->at, value->timestamp());
            return true;
        }
        auto* const mv = valueAt(valuePosition(definition, key));
        if (mv == nullptr) {
            return false;
        }
        storeField(mv->at, value->timestamp());
        storeField(mv->state, value->state());
        // Deliberate: a value that is no number has left its time and state by now; the old number stays.
        auto const number = value->toDouble();
        if (number.type != measval::Double) {
            return false;
        }
        storeField(mv->value, isInThousandths(key) ? number.value / thousandths : number.value);
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
        std::list<eStatus_Bits> reported;
        for (auto const head : {root.devices, root.groups}) {
            // Deliberate: defineState() follows the siblings by itself, so the k-th point is visited k times;
            // the result is that of one visit.
            for (auto* mp = pointAt(head); mp != nullptr; mp = pointAt(mp->next)) {
                defineState(*mp, reported);
            }
        }
        auto const global = mpState(eStatus_On, {}, reported);
        if (global != root.state) {
            storeField(root.state, global);
            if (ledThread_) {
                ledThread_->request(global);
            }
        }
    } catch (std::exception const&) {
        // The states written so far stay; the next propagation computes all of them again.
        return;
    }
}

void QelSharedMemoryWriter::defineState(QelShmMP& mp, std::list<eStatus_Bits>& out) {
    // Only nesting costs stack, and what is needed per point stays out of this frame: a tree may be MP_COUNT
    // deep.
    for (auto* point = &mp; point != nullptr; point = pointAt(point->next)) {
        std::list<eStatus_Bits> children;
        if (auto* const child = pointAt(point->children)) {
            defineState(*child, children);
        }
        out.push_back(combineState(*point, children));
    }
}

[[gnu::noinline]] // keeps its variables out of the recursion's frame
eStatus_Bits
QelSharedMemoryWriter::combineState(QelShmMP& mp, std::list<eStatus_Bits> const& children) {
    std::list<eStatus_Bits> values;
    for (auto* mv = valueAt(mp.mvs); mv != nullptr; mv = valueAt(mv->next)) {
        values.push_back(mv->state);
    }
    auto const state = mpState(mp.state, values, children);
    if (state != mp.state) {
        storeField(mp.state, state);
    }
    return reportedState(mp.guid, state);
}

} // namespace shm

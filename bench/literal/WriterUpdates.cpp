// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/literal/Log.h"
#include "bench/literal/States.h"
#include "bench/literal/Writer.h"
#include "domain/SensorIdentifier.h"
#include "region/Exceptions.h"
#include "region/RegionFields.h"

#include <exception>
#include <unordered_set>

namespace bench::literal {

namespace {

std::unordered_set<unsigned short> const pointLevelKeys{0x30, 0x33, 0x34, 0x35, 0x36,
                                                        0x37, 0x38, 0x39, 0x3A, 0x3B};

constexpr double thousandths = 1000.0;

} // namespace

void Writer::setActive() {
    if (!isMapped("setActive")) {
        return;
    }
    auto& root = region_->root;
    shm::storeField(root.guid, shm::ROOT_SVID);
    shm::storeField(root.state, eStatus_On);
    shm::storeField(root.unused, 0);
    shm::storeVersion(root, shm::ACTIVE_VERSION);
    Line(writerCategory, log4cpp::Priority::INFO, "setActive")
        << "root.version = " << static_cast<unsigned int>(shm::ACTIVE_VERSION);
}

bool Writer::updateMV(long long svid, std::unique_ptr<measval::MeasureValue> value) {
    try {
        auto const point = svid & ~0xFFFFLL;
        auto const known = points_.find(point);
        if (known == points_.end() || known->second.pos >= shm::MP_COUNT) {
            throw ex::InvalidSensorIdException(point);
        }
        if (!value) {
            return false;
        }
        auto& definition = known->second;
        auto const key = static_cast<unsigned short>(svid & 0xFFFF);
        if (pointLevelKeys.find(key) != pointLevelKeys.end()) {
            auto& mp = region_->points[definition.pos];
            shm::storeField(mp.state, value->state());
            shm::storeField(mp.at, value->timestamp());
            return true;
        }
        auto pos = shm::NO_POSITION;
        {
            std::lock_guard<std::mutex> const lock(definition.mutex);
            auto const found = definition.mvs.find(key);
            if (found != definition.mvs.end()) {
                pos = found->second;
            }
        }
        if (pos >= shm::MV_COUNT) {
            throw ex::InvalidSensorIdException(svid);
        }
        auto& mv = region_->values[pos];
        shm::storeField(mv.at, value->timestamp());
        shm::storeField(mv.state, value->state());
        auto const number = value->toDouble();
        if (number.type != measval::Double) {
            throw ex::InvalidTypeException(number.type);
        }
        if ((key >= 32 && key <= 38) || (key >= 0xFFF9 && key <= 0xFFFC)) {
            shm::storeField(mv.value, number.value / thousandths);
        } else {
            shm::storeField(mv.value, number.value);
        }
        return true;
    } catch (std::exception const&) {
        return false;
    } catch (...) {
        Line(writerCategory, log4cpp::Priority::ERROR, "updateMV") << "ran into a very exceptional state";
        return false;
    }
}

void Writer::propagateStates() {
    try {
        if (!isMapped("propagateStates")) {
            return;
        }
        std::list<eStatus_Bits> reported;
        for (auto pos = region_->root.devices; pos < shm::MP_COUNT; pos = region_->points[pos].next) {
            defineState(region_->points[pos], reported);
        }
        for (auto pos = region_->root.groups; pos < shm::MP_COUNT; pos = region_->points[pos].next) {
            defineState(region_->points[pos], reported);
        }
        auto const global = mpState(eStatus_On, {}, reported);
        if (global != region_->root.state) {
            shm::storeField(region_->root.state, global);
        }
    } catch (std::exception const&) {
        return; // what was written stays
    }
}

void Writer::defineState(shm::QelShmMP& mp, std::list<eStatus_Bits>& out) {
    std::list<eStatus_Bits> values;
    for (auto pos = mp.mvs; pos < shm::MV_COUNT; pos = region_->values[pos].next) {
        values.push_back(region_->values[pos].state);
    }
    std::list<eStatus_Bits> children;
    if (mp.children < shm::MP_COUNT) {
        defineState(region_->points[mp.children], children);
    }
    auto state = mpState(mp.state, values, children);
    if (state != mp.state) {
        shm::storeField(mp.state, state);
    }
    if (state == eStatus_Off) {
        auto const parts = SensorIdentifier::getSensorIdParts(mp.guid);
        if (parts[1] == 0 && parts[4] != -1 && parts[5] == -1) {
            state = eStatus_Alarm;
        }
    }
    out.push_back(state);
    if (mp.next < shm::MP_COUNT) {
        defineState(region_->points[mp.next], out);
    }
}

} // namespace bench::literal

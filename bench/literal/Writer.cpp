// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/literal/Writer.h"

#include "bench/literal/Log.h"
#include "domain/ElectricalSensorIdentifier.h"
#include "domain/SensorIdentifier.h"
#include "domain/SensorType.h"
#include "region/Exceptions.h"
#include "region/RegionFields.h"

#include <algorithm>

namespace bench::literal {

namespace {

using log4cpp::Priority;

/// Does a new point stand before one that is linked already?
bool standsBefore(long long svid, long long other) {
    auto const parts = SensorIdentifier::getSensorIdParts(svid);
    auto const otherParts = SensorIdentifier::getSensorIdParts(other);
    switch (parts[1]) {
    case 0:
        if (otherParts[1] == 0) {
            return svid < other;
        }
        Line(writerCategory, Priority::INFO, "operator()") << "1t";
        return true;
    case 1:
        if (otherParts[1] == 0 || otherParts[1] == 4) {
            return false;
        }
        if (otherParts[1] == 2) {
            return true;
        }
        return parts[3] != otherParts[3] ? parts[3] < otherParts[3] : parts[4] < otherParts[4];
    case 2:
        return otherParts[1] == 2 && svid < other;
    case 4:
        if (otherParts[1] == 0) {
            return false;
        }
        return otherParts[1] == 1 || otherParts[1] == 2 || svid < other;
    default:
        return svid < other;
    }
}

} // namespace

Writer::Writer() {
    for (unsigned int pos = 0; pos < shm::MV_COUNT; ++pos) {
        freeMVs_.push_back(pos);
    }
    for (unsigned int pos = 0; pos < shm::MP_COUNT; ++pos) {
        freeMPs_.push_back(pos);
    }
}

void Writer::openShm() {
    object_.emplace(objectName, shm::REGION_SIZE, SharedObject::Access::Create);
    region_ = static_cast<shm::record::Region*>(object_->data());
    std::memset(static_cast<void*>(region_), shm::WIPE_BYTE, shm::REGION_SIZE);
}

bool Writer::isMapped(char const* operation) const {
    if (region_ != nullptr) {
        return true;
    }
    Line(writerCategory, Priority::ERROR, operation) << "the shared memory is not mapped";
    return false;
}

bool Writer::addStructure(Definitions const& definitions) {
    bool added = false;
    for (auto const& [svid, definition] : definitions) {
        if ((svid & ~0xFFFFLL) == shm::ROOT_SVID) {
            continue;
        }
        unsigned int ppos = shm::NO_POSITION;
        auto const known = points_.find(svid);
        if (known == points_.end()) {
            Line(writerCategory, Priority::DEBUG, "addStructure")
                << svid << ", #keys = " << definition.mvs.size();
            ppos = parentOf(svid);
        } else {
            auto const& knownKeys = known->second.mvs;
            if (std::all_of(definition.mvs.begin(), definition.mvs.end(),
                            [&](auto const& value) { return knownKeys.count(value.first) != 0; })) {
                continue;
            }
        }
        if (addMP(svid, definition.mvs, ppos) >= shm::MP_COUNT) {
            Line(writerCategory, Priority::ERROR, "bailout") << "failed to handle MP " << svid;
            throw ex::InvalidSensorIdException(svid);
        }
        added = true;
    }
    return added;
}

unsigned int Writer::addMP(long long svid, Keys const& mvs, unsigned int ppos) {
    Line(writerCategory, Priority::INFO, "addMP") << "svid = " << svid << ", ppos = " << ppos;
    if (!isMapped("addMP")) {
        return shm::NO_POSITION;
    }
    auto const point = svid & ~0xFFFFLL;
    if (point == shm::ROOT_SVID) {
        return shm::NO_POSITION;
    }
    auto const known = points_.find(point);
    if (known != points_.end()) {
        if (known->second.pos < shm::MP_COUNT) {
            addMVs(region_->points[known->second.pos], known->second, mvs);
        }
        return known->second.pos;
    }
    std::lock_guard<std::recursive_mutex> const lock(mutex_);
    if (freeMPs_.empty()) {
        Line(writerCategory, Priority::WARN, "addMP")
            << "no free measurement points left, cannot add " << point;
        return shm::NO_POSITION;
    }
    auto const pos = freeMPs_.front();
    freeMPs_.pop_front();
    auto& mp = initMP(pos, point, ppos);
    connectMP(mp);
    MPDef definition;
    definition.pos = pos;
    addMVs(mp, definition, mvs);
    points_.insert(std::make_pair(point, definition));
    return pos;
}

void Writer::addMVs(shm::QelShmMP& mp, MPDef& definition, Keys const& mvs) {
    unsigned int tail = shm::NO_POSITION;
    {
        std::lock_guard<std::mutex> const lock(definition.mutex);
        for (auto const& value : definition.mvs) {
            tail = tail == shm::NO_POSITION ? value.second : std::max(tail, value.second);
        }
    }
    for (auto const& wanted : mvs) {
        {
            std::lock_guard<std::mutex> const lock(definition.mutex);
            auto const known = definition.mvs.find(wanted.first);
            if (known != definition.mvs.end()) {
                Line(writerCategory, Priority::WARN, "addMVs")
                    << "Ignoring known key " << wanted.first << ", pos = " << known->second;
                continue;
            }
        }
        if (freeMVs_.empty()) {
            Line(writerCategory, Priority::WARN, "addMVs")
                << "no free measured values left, cannot add key " << wanted.first << " to " << mp.guid;
            continue;
        }
        auto const pos = freeMVs_.front();
        freeMVs_.pop_front();
        initMV(pos, wanted.first);
        {
            std::lock_guard<std::mutex> const lock(definition.mutex);
            definition.mvs.insert(std::make_pair(wanted.first, pos));
        }
        if (mp.mvs >= shm::MV_COUNT) {
            shm::storeLink(mp.mvs, pos);
        }
        if (tail < shm::MV_COUNT) {
            shm::storeLink(region_->values[tail].next, pos);
        }
        tail = pos;
    }
}

shm::QelShmMP& Writer::initMP(unsigned int pos, long long svid, unsigned int ppos) {
    Line(writerCategory, Priority::DEBUG, "initMP")
        << "pos = " << pos << ", guid = " << svid << ", ppos = " << ppos;
    auto& mp = region_->points[pos];
    shm::wipeSlot(mp);
    auto const type = SensorIdentifier::extractSensorType(svid);
    shm::storeField(mp.pos, pos);
    shm::storeField(mp.parent, ppos);
    shm::storeField(mp.guid, svid);
    shm::storeField(mp.at, 0);
    shm::storeField(mp.state, eStatus_On);
    shm::storeField(mp.type, type == SensorType::SocketGroup || type == SensorType::RCM ? 1 : 0);
    return mp;
}

shm::record::QelShmMVal& Writer::initMV(unsigned int pos, unsigned short key) {
    Line(writerCategory, Priority::DEBUG, "initMV") << "pos = " << pos << ", key = " << key;
    auto& mv = region_->values[pos];
    shm::wipeSlot(mv);
    shm::storeField(mv.value, 0);
    shm::storeField(mv.at, 0);
    shm::storeField(mv.state, eStatus_ExpectedValue);
    shm::storeField(mv.key, key);
    return mv;
}

void Writer::connectMP(shm::QelShmMP& mp) {
    auto const type = SensorIdentifier::extractSensorType(mp.guid);
    Line(writerCategory, Priority::DEBUG, "connectMP")
        << "pos = " << mp.pos << ", stype = " << type << ", ppos = " << mp.parent;
    auto curpos = shm::NO_POSITION;
    if (mp.parent < shm::MP_COUNT) {
        curpos = region_->points[mp.parent].children;
    } else if (type == SensorType::Electrical) {
        curpos = region_->root.devices;
    } else if (type == SensorType::SocketGroup) {
        curpos = region_->root.groups;
    }
    Line(writerCategory, Priority::DEBUG, "connectMP") << "curpos = " << curpos;
    auto last = shm::NO_POSITION;
    while (curpos < shm::MP_COUNT) {
        auto& current = region_->points[curpos];
        if (standsBefore(mp.guid, current.guid)) {
            insertBefore(mp, current);
            return;
        }
        last = curpos;
        curpos = current.next;
    }
    if (last < shm::MP_COUNT) {
        shm::storeLink(mp.prev, last);
        shm::storeLink(region_->points[last].next, mp.pos);
    } else if (mp.parent < shm::MP_COUNT) {
        shm::storeLink(region_->points[mp.parent].children, mp.pos);
    } else {
        setListHead(mp);
    }
}

void Writer::insertBefore(shm::QelShmMP& mp, shm::QelShmMP& current) {
    Line(writerCategory, Priority::INFO, "connectMP") << mp.guid << " < " << current.guid;
    shm::storeLink(mp.next, current.pos);
    shm::storeLink(mp.prev, current.prev);
    if (current.prev < shm::MP_COUNT) {
        shm::storeLink(region_->points[current.prev].next, mp.pos);
    } else if (current.parent < shm::MP_COUNT) {
        shm::storeLink(region_->points[current.parent].children, mp.pos);
    } else {
        setListHead(mp);
    }
    shm::storeLink(current.prev, mp.pos);
}

void Writer::setListHead(shm::QelShmMP const& mp) {
    auto const type = SensorIdentifier::extractSensorType(mp.guid);
    if (type == SensorType::Electrical) {
        shm::storeLink(region_->root.devices, mp.pos);
    } else if (type == SensorType::SocketGroup) {
        shm::storeLink(region_->root.groups, mp.pos);
    } else {
        Line(writerCategory, Priority::WARN, "operator()")
            << "cannot handle measurement points of type " << type;
    }
}

unsigned int Writer::parentOf(long long svid) const {
    auto const parts = SensorIdentifier::getSensorIdParts(svid);
    if (parts[0] == -1 || parts[2] == -1) {
        return shm::NO_POSITION;
    }
    ElectricalSensorIdentifier identifier(-1, -1, -1, -1);
    identifier.setDevice(parts[0]);
    if (parts[1] != 1) {
        for (unsigned int level = 2; level <= 4; ++level) {
            if (parts[level + 1] == -1 && (level == 4 || parts[level + 2] == -1)) {
                break;
            }
            identifier.set(level, parts[level]);
        }
    }
    auto known = points_.find(identifier.getSensorVariableID(0));
    if (known == points_.end() && parts[5] != -1 && parts[4] == 0) {
        identifier.set(4, -1);
        identifier.set(5, -1);
        known = points_.find(identifier.getSensorVariableID(0));
    }
    if (known == points_.end()) {
        Line(writerCategory, Priority::ERROR, "bailout")
            << "failed to find parent MP " << identifier.getSensorVariableID(0) << " of MP " << svid;
        throw ex::InvalidSensorIdException(svid);
    }
    return known->second.pos;
}

} // namespace bench::literal

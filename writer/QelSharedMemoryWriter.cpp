// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/QelSharedMemoryWriter.h"

#include "domain/SensorIdentifier.h"
#include "region/Exceptions.h"
#include "region/LogLine.h"
#include "region/RegionFields.h"
#include "region/SvidParts.h"
#include "states/QelStateLedThread.h"
#include "writer/KeySets.h"
#include "writer/SlotsBySvid.h"
#include "writer/WriterLock.h"
#include "writer/WriterRecords.h"

#include <log4cpp/Category.hh>
#include <log4cpp/Priority.hh>

#include <algorithm>
#include <numeric>
#include <utility>

namespace shm {

namespace {

/// True when every value of a definition is among a point's values.
bool hasAllKeys(MPDef& point, MPDef const& definition) {
    std::lock_guard<std::mutex> const lock(point.mutex);
    return std::all_of(definition.mvs.begin(), definition.mvs.end(),
                       [&](auto const& value) { return point.mvs.count(value.first) != 0; });
}

/// The highest position and the highest key of a point's values.
struct Highest {
    unsigned int pos = NO_POSITION; ///< NO_POSITION when there are no values
    int key = -1;                   ///< -1 when there are none
};

Highest highestOf(MPDef& point) {
    std::lock_guard<std::mutex> const lock(point.mutex);
    if (point.mvs.empty()) {
        return {};
    }
    auto const highest =
        std::max_element(point.mvs.begin(), point.mvs.end(),
                         [](auto const& left, auto const& right) { return left.second < right.second; });
    return {highest->second, point.mvs.rbegin()->first};
}

/// Takes the lock that shows a living writer. Logs when another writer holds it.
std::unique_ptr<WriterLock> lockRegion() {
    auto lock = std::make_unique<WriterLock>();
    if (lock->isOfAnotherWriter()) {
        LogLine(writerLog, log4cpp::Priority::WARN, "QelSharedMemoryWriter")
            << "another writer is alive and writes into the same shared memory";
    }
    return lock;
}

/// Adds a point without values to the map and the index, or throws std::bad_alloc and adds it to neither.
/// @param place the point's place in the map
/// @param room  number of values to make room for in the index
MPDef& addToRecords(QelSharedMemoryWriter::Definitions& points,
                    QelSharedMemoryWriter::Definitions::iterator place, SlotsBySvid& index, long long svid,
                    unsigned int pos, std::size_t room) {
    auto const known = points.emplace_hint(place, svid, MPDef(pos, {}));
    try {
        index.add(svid, known->second, room);
    } catch (...) {
        points.erase(known);
        throw;
    }
    return known->second;
}

} // namespace

QelSharedMemoryWriter::QelSharedMemoryWriter()
    : QelSharedMemoryAccess(ShmAccess::Write),
      freeMVs_(MV_COUNT),
      freeMPs_(MP_COUNT),
      records_(std::make_unique<WriterRecords>()) {
    LogLine(writerLog, log4cpp::Priority::INFO, "QelSharedMemoryWriter") << "start";
    QelSharedMemoryAccess::openShm();
    lock_ = root() ? lockRegion() : nullptr;
    std::iota(freeMVs_.begin(), freeMVs_.end(), 0U);
    std::iota(freeMPs_.begin(), freeMPs_.end(), 0U);
    ledThread_ = std::make_unique<QelStateLedThread>();
    ledThread_->start();
}

QelSharedMemoryWriter::~QelSharedMemoryWriter() {
    LogLine(writerLog, log4cpp::Priority::INFO, "~QelSharedMemoryWriter") << "done";
    if (ledThread_) {
        ledThread_->join();
        ledThread_.reset();
    }
}

bool QelSharedMemoryWriter::addStructure(Definitions const& definitions) {
    bool added = false;
    bool const isLogged = writerLog.isPriorityEnabled(log4cpp::Priority::DEBUG); // once for all points
    for (auto const& [svid, definition] : definitions) {
        if (pointSvid(svid) == ROOT_SVID) {
            continue;
        }
        unsigned int ppos = NO_POSITION;
        if (auto const known = points_.find(svid); known == points_.end()) {
            if (isLogged) {
                LogLine(writerLog, log4cpp::Priority::DEBUG, "addStructure")
                    << svid << ", #keys = " << definition;
            }
            ppos = parentOf(svid).pos;
        } else if (hasAllKeys(known->second, definition)) {
            continue;
        }
        if (addMP(svid, definition.mvs, ppos) >= MP_COUNT) {
            bailout(svid);
        }
        added = true;
    }
    return added;
}

unsigned int QelSharedMemoryWriter::addMP(long long svid, std::map<unsigned short, unsigned int> const& mvs,
                                          unsigned int ppos) {
    LogLine(writerLog, log4cpp::Priority::INFO, "addMP") << "svid = " << svid << ", ppos = " << ppos;
    if (!isMapped("addMP")) {
        return NO_POSITION;
    }

    auto const point = pointSvid(svid);
    if (point == ROOT_SVID) {
        return NO_POSITION;
    }
    auto const place = points_.lower_bound(point);
    if (place != points_.end() && place->first == point) { // known
        auto& definition = place->second;
        if (auto* const mp = pointAt(definition.pos)) {
            addMVs(*mp, definition, mvs);
        }
        return definition.pos;
    }

    std::lock_guard<std::recursive_mutex> const lock(structureMutex_);
    if (freeMPs_.empty()) {
        LogLine(writerLog, log4cpp::Priority::WARN, "addMP")
            << "no free measurement points left, cannot add " << point;
        return NO_POSITION;
    }
    // All memory for the point is allocated first: afterwards the slot is taken and linked.
    auto& definition = addToRecords(points_, place, records_->slots, point, freeMPs_.front(),
                                    std::min(mvs.size(), freeMVs_.size()));
    freeMPs_.pop_front();
    auto& mp = initMP(definition.pos, point, ppos);
    connectMP(mp);
    addMVs(mp, definition, mvs);
    return definition.pos;
}

void QelSharedMemoryWriter::addMVs(QelShmMP& mp, MPDef& definition,
                                   std::map<unsigned short, unsigned int> const& mvs) {
    records_->changes.note();
    // Deliberate: the highest position counts as the chain's tail, since positions are given out in ascending order.
    auto [tail, highestKey] = highestOf(definition);
    auto* const indexed = records_->slots.pointOf(definition);
    bool const isLogged = writerLog.isPriorityEnabled(log4cpp::Priority::DEBUG); // once for all values
    for (auto const& wanted : mvs) {
        auto const key = wanted.first;
        std::unique_lock<std::mutex> lock(definition.mutex);
        // Keys mostly come in ascending order.
        auto const place = key > highestKey ? definition.mvs.end() : definition.mvs.lower_bound(key);
        if (place != definition.mvs.end() && place->first == key) {
            auto const pos = place->second;
            lock.unlock();
            LogLine(writerLog, log4cpp::Priority::WARN, "addMVs")
                << "Ignoring known key " << key << ", pos = " << pos;
            continue;
        }
        if (freeMVs_.empty()) {
            lock.unlock();
            LogLine(writerLog, log4cpp::Priority::WARN, "addMVs")
                << "no free measured values left, cannot add key " << key << " to " << mp.guid;
            continue;
        }
        auto const pos = freeMVs_.front();
        if (isLogged) { // not while the mutex is held
            lock.unlock();
            initMV(pos, key);
            lock.lock();
        } else {
            wipeMV(pos, key);
        }
        if (indexed != nullptr) {
            indexed->reserve(definition.mvs.size() + 1);
        }
        definition.mvs.emplace_hint(place, key, pos);
        if (indexed != nullptr) {
            indexed->insert(key, pos);
        }
        lock.unlock();
        highestKey = std::max<int>(highestKey, key);
        freeMVs_.pop_front();

        if (mp.mvs >= MV_COUNT) {
            storeLink(mp.mvs, pos);
        }
        if (auto* const last = valueAt(tail)) {
            storeLink(last->next, pos);
        }
        tail = pos;
    }
}

QelShmMP& QelSharedMemoryWriter::initMP(unsigned int pos, long long svid, unsigned int ppos) {
    LogLine(writerLog, log4cpp::Priority::DEBUG, "initMP")
        << "pos = " << pos << ", guid = " << svid << ", ppos = " << ppos;
    auto const kind = SensorIdentifier::extractSensorType(svid);
    auto& mp = region()->points[pos];
    records_->changes.note();
    wipeSlot(mp);
    storeField(mp.pos, pos);
    storeField(mp.parent, ppos);
    storeField(mp.guid, svid);
    storeField(mp.at, 0);
    storeField(mp.state, eStatus_On);
    storeField(mp.type, kind == SensorType::SocketGroup || kind == SensorType::RCM ? 1 : 0);
    return mp;
}

record::QelShmMVal& QelSharedMemoryWriter::initMV(unsigned int pos, unsigned short key) {
    LogLine(writerLog, log4cpp::Priority::DEBUG, "initMV") << "pos = " << pos << ", key = " << key;
    records_->changes.note();
    return wipeMV(pos, key);
}

record::QelShmMVal& QelSharedMemoryWriter::wipeMV(unsigned int pos, unsigned short key) {
    auto& mv = region()->values[pos];
    wipeSlot(mv);
    storeField(mv.value, 0.0);
    storeField(mv.at, 0);
    storeField(mv.state, eStatus_ExpectedValue);
    storeField(mv.key, key);
    return mv;
}

std::unordered_set<long long>
QelSharedMemoryWriter::injectTypes(std::unordered_map<long long, int> const& types) {
    LogLine(writerLog, log4cpp::Priority::DEBUG, "injectTypes") << "#itm = " << types.size();
    std::unordered_set<long long> applied;
    for (auto const& [svid, code] : types) {
        LogLine(writerLog, log4cpp::Priority::DEBUG, "injectTypes") << svid << ", " << code;
        auto const known = points_.find(pointSvid(svid));
        if (known == points_.end()) {
            continue;
        }
        if (auto* const mp = pointAt(known->second.pos)) {
            storeField(mp->type, static_cast<std::uint8_t>(code));
            applied.insert(svid);
        }
    }
    return applied;
}

QelShmMP* QelSharedMemoryWriter::pointAt(unsigned int pos) const {
    auto* const mapped = region();
    return mapped != nullptr && pos < MP_COUNT ? &mapped->points[pos] : nullptr;
}

record::QelShmMVal* QelSharedMemoryWriter::valueAt(unsigned int pos) const {
    auto* const mapped = region();
    return mapped != nullptr && pos < MV_COUNT ? &mapped->values[pos] : nullptr;
}

bool QelSharedMemoryWriter::isMapped(char const* operation) const {
    if (region() != nullptr) {
        return true;
    }
    LogLine(writerLog, log4cpp::Priority::ERROR, operation) << "the shared memory is not mapped";
    return false;
}

} // namespace shm

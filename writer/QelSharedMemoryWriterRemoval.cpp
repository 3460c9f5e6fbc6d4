// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/QelSharedMemoryWriter.h"

#include "region/LogLine.h"
#include "region/RegionFields.h"
#include "region/SvidParts.h"
#include "writer/KeySets.h"
#include "writer/SlotsBySvid.h"
#include "writer/WriterRecords.h"

#include <log4cpp/Priority.hh>

#include <cstddef>
#include <deque>
#include <ios>
#include <mutex>
#include <unordered_set>

namespace shm {

namespace {

constexpr std::size_t removedBuckets = 10;

[[gnu::noinline]] // keeps the line's buffer out of the recursion's frame
void logUnlink(unsigned int pos, bool topnode, std::size_t removed) {
    LogLine(writerLog, log4cpp::Priority::INFO, "unlinkMP")
        << "pos = " << pos << ", topnode = " << std::boolalpha << topnode << ", #svids = " << removed;
}

/// Removes what was appended to a queue during its life, unless keep() was called.
class QueueRollback {
public:
    explicit QueueRollback(std::deque<unsigned int>& queue) : queue_(queue), size_(queue.size()) {}
    ~QueueRollback() {
        while (!isKept_ && queue_.size() > size_) {
            queue_.pop_back();
        }
    }
    QueueRollback(QueueRollback const&) = delete;
    QueueRollback& operator=(QueueRollback const&) = delete;

    void keep() { isKept_ = true; }

private:
    std::deque<unsigned int>& queue_;
    std::size_t size_;
    bool isKept_ = false;
};

/// The removed points of one call. The destructor removes them from the writer's records, also when a later point
/// cannot be removed.
class RemovedPoints {
public:
    RemovedPoints(QelSharedMemoryWriter::Definitions& points, SlotsBySvid& index)
        : points_(points),
          index_(index),
          svids_(removedBuckets) {}
    ~RemovedPoints() {
        for (auto const svid : svids_) {
            index_.remove(svid);
            points_.erase(svid);
        }
    }
    RemovedPoints(RemovedPoints const&) = delete;
    RemovedPoints& operator=(RemovedPoints const&) = delete;

    std::unordered_set<long long>& svids() { return svids_; }

private:
    QelSharedMemoryWriter::Definitions& points_;
    SlotsBySvid& index_;
    std::unordered_set<long long> svids_;
};

/// Takes freed slots from the records of the points that had them, so that no slot is freed twice. These are two
/// points if the slot holds the id of another point.
/// @param pos  the freed slot of a point
/// @param guid the id in it, of the point whose values were freed
void detachSlots(QelSharedMemoryWriter::Definitions& points, SlotsBySvid& index, unsigned int pos,
                 long long guid) {
    if (auto const named = points.find(guid); named != points.end()) {
        named->second.mvs.clear();
        index.removeValues(named->second);
    }
    if (index.isTaken(pos)) {
        auto const owner = index.svidAt(pos);
        points.find(owner)->second.pos = NO_POSITION;
        index.remove(owner);
    }
}

} // namespace

bool QelSharedMemoryWriter::modifyStructure(std::unordered_set<long long> const& svids) {
    LogLine(writerLog, log4cpp::Priority::DEBUG, "modifyStructure") << "#svids = " << svids.size();
    Definitions definitions;
    for (auto const svid : svids) {
        auto const point = pointSvid(svid);
        auto& definition = definitions[point];
        auto const key = valueKey(svid);
        if (svid != point && !isPointStateKey(key)) {
            std::lock_guard<std::mutex> const lock(definition.mutex);
            definition.mvs.emplace(key, NO_POSITION);
        }
    }
    // Deliberate: adding comes first, so slots freed by this change serve the next one.
    bool const added = addStructure(definitions);
    bool const removed = removeStructure(definitions);
    return added || removed;
}

bool QelSharedMemoryWriter::removeStructure(Definitions const& definitions) {
    if (region() == nullptr) {
        return false;
    }
    std::lock_guard<std::recursive_mutex> const lock(structureMutex_);
    RemovedPoints removedPoints(points_, records_->slots);
    auto& removed = removedPoints.svids();
    bool anyRemoved = false;
    for (auto next = points_.begin(); next != points_.end();) {
        auto const known = next++;
        if (definitions.count(known->first) != 0 || removed.count(known->first) != 0) {
            continue;
        }
        unlinkMP(known->second.pos, true, removed);
        anyRemoved = true;
        if (removed.count(known->first) == 0) { // its slot held another id
            records_->slots.remove(known->first);
            points_.erase(known);
        }
    }
    return anyRemoved;
}

void QelSharedMemoryWriter::unlinkMP(unsigned int pos, bool topnode, std::unordered_set<long long>& removed) {
    logUnlink(pos, topnode, removed.size());
    auto* const mp = pointAt(pos);
    if (mp == nullptr) {
        return;
    }
    if (!topnode) {
        unlinkMP(mp->next, false, removed);
        unlinkMP(mp->children, false, removed);
    }
    freeSlotsOf(*mp, pos, removed);
    if (topnode) {
        disconnectMP(*mp);
    }
}

// What may fail comes first. After a failure nothing has changed.
[[gnu::noinline]] // keeps its variables out of the recursion's frame
void QelSharedMemoryWriter::freeSlotsOf(QelShmMP const& mp, unsigned int pos,
                                        std::unordered_set<long long>& removed) {
    QueueRollback points(freeMPs_);
    QueueRollback values(freeMVs_);
    if (auto const known = points_.find(mp.guid); known != points_.end()) {
        auto& definition = known->second;
        std::lock_guard<std::mutex> const lock(definition.mutex);
        for (auto const& value : definition.mvs) {
            freeMVs_.push_back(value.second);
        }
    } else {
        LogLine(writerLog, log4cpp::Priority::WARN, "unlinkMP")
            << "failed to find " << std::dec << mp.guid << " in local cache (no mvs are freed, ignored)";
    }
    if (records_->slots.isTaken(pos)) { // else it is free already
        freeMPs_.push_back(pos);
    }
    removed.insert(mp.guid);
    points.keep();
    values.keep();
    detachSlots(points_, records_->slots, pos, mp.guid);
}

void QelSharedMemoryWriter::disconnectMP(QelShmMP& mp) {
    records_->changes.note();
    if (auto* const previous = pointAt(mp.prev)) {
        storeLink(previous->next, mp.next); // mp keeps its prev
    } else {
        if (auto* const parent = pointAt(mp.parent)) {
            storeLink(parent->children, mp.next);
        } else if (auto* const head = listHead(mp.guid)) {
            storeLink(*head, mp.next);
        }
        storeLink(mp.prev, NO_POSITION);
    }
    if (auto* const next = pointAt(mp.next)) {
        storeLink(next->prev, mp.prev);
        storeLink(mp.next, NO_POSITION);
    }
    storeField(mp.parent, NO_POSITION);
}

} // namespace shm

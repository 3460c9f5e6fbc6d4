#include "writer/QelSharedMemoryWriter.h"

#include "region/LogLine.h"
#include "region/RegionFields.h"
#include "region/SvidParts.h"
#include "writer/PointIndex.h"
#include "writer/ValueKeys.h"

#include <log4cpp/Priority.hh>

namespace shm {

namespace {

constexpr std::size_t removedBuckets = 10;

[[gnu::noinline]] // keeps the line's buffer out of the recursion's frame
void logUnlink(unsigned int pos, bool topnode, std::size_t removed) {
    LogLine(writerLog(), log4cpp::Priority::INFO, "unlinkMP")
        << "pos = " << pos << ", topnode = " << std::boolalpha << topnode << ", #svids = " << removed;
}

} // namespace

bool QelSharedMemoryWriter::modifyStructure(std::unordered_set<long long> const& svids) {
    LogLine(writerLog(), log4cpp::Priority::DEBUG, "modifyStructure") << "#svids = " << svids.size();
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
    std::unordered_set<long long> removed(removedBuckets);
    bool anyRemoved = false;
    for (auto const& [svid, definition] : points_) {
        if (definitions.count(svid) == 0 && removed.count(svid) == 0) {
            unlinkMP(definition.pos, true, removed);
            anyRemoved = true;
        }
    }
    for (auto const svid : removed) {
        index_->remove(svid);
        points_.erase(svid);
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
    freeMVsOf(*mp);
    if (topnode) {
        disconnectMP(*mp);
    }
    freeMPs_.push_back(pos);
    removed.insert(mp->guid);
}

[[gnu::noinline]] // keeps its variables out of the recursion's frame
void QelSharedMemoryWriter::freeMVsOf(QelShmMP const& mp) {
    auto const known = points_.find(mp.guid);
    if (known == points_.end()) {
        LogLine(writerLog(), log4cpp::Priority::WARN, "unlinkMP")
            << "failed to find " << std::dec << mp.guid << " in local cache (no mvs are freed, ignored)";
        return;
    }
    auto& definition = known->second;
    std::lock_guard<std::mutex> const lock(definition.mutex);
    for (auto const& value : definition.mvs) {
        freeMVs_.push_back(value.second);
    }
}

void QelSharedMemoryWriter::disconnectMP(QelShmMP& mp) {
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

#include "reader/QelSharedMemoryReader.h"

#include "reader/MPntPosRefill.h"
#include "reader/PositionTable.h"
#include "region/LogLine.h"
#include "region/RegionFields.h"
#include "region/SvidParts.h"

#include <utility>

namespace shm {

namespace {

/// Structure changes that no index follows yet. One for the whole process, because the signal handler is
/// given nothing that names the reader it serves.
std::atomic<unsigned int> modificationCount{0};

void logModifications(char const* operation) {
    LogLine(readerLog(), log4cpp::Priority::DEBUG, operation)
        << "modifications = " << modificationCount.load();
}

/// Takes the visitor out of its slot, and puts it back when it goes out of scope.
class VisitorOnLeave {
public:
    explicit VisitorOnLeave(std::unique_ptr<IQelSharedMemoryVisitor>& slot)
        : slot_(slot),
          visitor_(std::move(slot)) {}
    ~VisitorOnLeave() { slot_ = std::move(visitor_); }
    VisitorOnLeave(VisitorOnLeave const&) = delete;
    VisitorOnLeave& operator=(VisitorOnLeave const&) = delete;

private:
    std::unique_ptr<IQelSharedMemoryVisitor>& slot_;
    std::unique_ptr<IQelSharedMemoryVisitor> visitor_;
};

} // namespace

void QelSharedMemoryReader::countModification(char const* operation) {
    ++modificationCount;
    logModifications(operation);
}

unsigned int QelSharedMemoryReader::modifications() const {
    return modificationCount.load();
}

void QelSharedMemoryReader::syncPositions(bool force) {
    if (!force && modificationCount == 0) {
        return;
    }
    unsigned int const before = modificationCount;
    std::lock_guard<std::recursive_mutex> const lock(mutex_);
    {
        VisitorOnLeave const client(visitor_);
        positionTable_->invalidate();
        visitor(std::make_unique<MPntPosRefill>(positions_));
        visit();
    }
    positionTable_->takeOver();
    ++rebuilds_;
    // Deliberate: one less, not zero, if the structure changed meanwhile, so that the next look-up rebuilds.
    if (modificationCount == before) {
        modificationCount = 0;
    } else {
        --modificationCount;
    }
    logModifications("syncPositions");
}

/// The slot of a point, null when the index does not know it. The caller holds the mutex.
QelShmMP const* QelSharedMemoryReader::pointOf(long long svid) const {
    auto const pos = positionTable_->find(svid);
    auto const* const mapped = region();
    return pos < MP_COUNT && mapped != nullptr ? &mapped->points[pos] : nullptr;
}

std::unique_ptr<QelShmMPnt> QelSharedMemoryReader::mpnt(long long svid, bool force) {
    syncPositions(force);
    std::lock_guard<std::recursive_mutex> const lock(mutex_);
    auto const* const point = pointOf(svid);
    return point == nullptr ? nullptr : std::make_unique<QelShmMPnt>(point);
}

QelShmMVal QelSharedMemoryReader::mval(long long svid, bool force) {
    syncPositions(force);
    QelShmKeptMVal once(svid);
    return lookUp(once);
}

QelShmMVal QelSharedMemoryReader::mval(QelShmKeptMVal& kept) {
    // A change of structure shows in the counter until an index follows it, then in that index's number.
    if (kept.region_ != nullptr && kept.region_ == region() &&
        modificationCount.load(std::memory_order_relaxed) == 0 &&
        kept.rebuild_ == rebuilds_.load(std::memory_order_relaxed) &&
        kept.point_->guid == pointSvid(kept.svid_) && kept.value_->key == valueKey(kept.svid_)) {
        return QelShmMVal(kept.value_);
    }
    syncPositions(false);
    return lookUp(kept);
}

QelShmMVal QelSharedMemoryReader::lookUp(QelShmKeptMVal& kept) {
    std::lock_guard<std::recursive_mutex> const lock(mutex_);
    auto const key = valueKey(kept.svid_);
    kept.region_ = nullptr;
    kept.rebuild_ = rebuilds_;
    kept.point_ = pointOf(pointSvid(kept.svid_));
    auto const first = kept.point_ == nullptr ? NO_POSITION : kept.point_->mvs;
    for (auto pos = first; pos < MV_COUNT; pos = region()->values[pos].next) {
        auto const& slot = region()->values[pos];
        if (slot.key == key) {
            kept.region_ = region();
            kept.value_ = &slot;
            return QelShmMVal(&slot);
        }
    }
    return {};
}

} // namespace shm

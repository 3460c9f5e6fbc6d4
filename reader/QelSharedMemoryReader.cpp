// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelSharedMemoryReader.h"

#include "reader/MPntPosVisitor.h"
#include "reader/ModificationCounter.h"
#include "reader/Reachability.h"
#include "reader/VisitsOfThread.h"
#include "region/LogLine.h"
#include "region/RegionFields.h"
#include "region/SvidParts.h"

#include <utility>

namespace shm {

namespace {

/// Tells whether a value is still where it was found. True is certain; false may be wrong briefly while the writer
/// links.
bool isStillInPlace(record::Region const& region, QelShmMP const& point, record::QelShmMVal const& value,
                    long long svid) {
    return point.guid == pointSvid(svid) && value.key == valueKey(svid) &&
           isLinkedToByPredecessor(region, static_cast<std::uint32_t>(&point - region.points)) &&
           isInValueChain(region, loadLink(point.mvs), static_cast<std::uint32_t>(&value - region.values));
}

void logModifications(char const* operation) {
    LogLine(readerLog(), log4cpp::Priority::DEBUG, operation)
        << "modifications = " << modificationCounter.current();
}

} // namespace

/// Installs the visitor that builds the index, and restores the client's in the destructor. A visitor that is installed
/// meanwhile stays instead.
class QelSharedMemoryReader::ScopedIndexVisitor {
public:
    ScopedIndexVisitor(QelSharedMemoryReader& reader, std::unique_ptr<IQelSharedMemoryVisitor> indexing)
        : reader_(reader),
          indexing_(indexing.get()),
          outer_(reader.indexing_),
          client_(std::make_unique<RetiredVisitor>()) {
        client_->visitor = std::move(reader.visitor_);
        reader.visitor(std::move(indexing));
        reader.indexing_ = indexing_;
    }
    ~ScopedIndexVisitor() {
        if (indexes()) {
            reader_.visitor_ = std::move(client_->visitor);
            reader_.indexing_ = outer_;
        } else {
            reader_.indexing_ = nullptr;
            VisitsOfThread::get().retire(std::move(client_));
        }
    }
    ScopedIndexVisitor(ScopedIndexVisitor const&) = delete;
    ScopedIndexVisitor& operator=(ScopedIndexVisitor const&) = delete;

    /// Tells whether the visitor that builds the index is still installed.
    bool indexes() const { return reader_.indexing_ == indexing_; }

private:
    QelSharedMemoryReader& reader_;
    IQelSharedMemoryVisitor const* indexing_;
    IQelSharedMemoryVisitor const* outer_; // visitor of the rebuild inside which this one runs, if any
    std::unique_ptr<RetiredVisitor> client_;
};

void QelSharedMemoryReader::countModification(char const* operation) {
    modificationCounter.raise();
    logModifications(operation);
}

unsigned int QelSharedMemoryReader::modifications() const {
    return modificationCounter.current();
}

void QelSharedMemoryReader::syncPositions(bool force) {
    if (!force && modificationCounter.current() == 0) {
        return;
    }
    std::lock_guard<std::recursive_mutex> const lock(mutex_);
    auto const before = modificationCounter.snapshot();
    bool isWhole = false;
    try {
        isWhole = buildIndex();
    } catch (...) {
        modificationCounter.keepPending();
        throw;
    }
    if (isWhole) {
        // Deliberate: if the structure changed meanwhile the counter falls by one, not to 0, so the next look-up
        // rebuilds.
        modificationCounter.settle(before);
    } else {
        modificationCounter.keepPending();
    }
    logModifications("syncPositions");
}

bool QelSharedMemoryReader::buildIndex() {
    auto indexing = std::make_unique<MPntPosVisitor>(positions_);
    auto result = std::make_shared<IQelVisitorResult>();
    auto const cuts = cuts_.load();
    ++rebuilds_;
    ScopedIndexVisitor const client(*this, std::move(indexing));
    positions_.clear();
    visit(result);
    return client.indexes() && cuts_ == cuts;
}

QelShmMP const* QelSharedMemoryReader::pointOf(long long svid) const {
    auto const known = positions_.find(svid);
    auto const pos = known == positions_.end() ? NO_POSITION : known->second;
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
    // The counter before rebuilds_: a thread that reads the 0 of a rebuild also reads that rebuild's number.
    if (kept.region_ != nullptr && kept.region_ == region() && modificationCounter.current() == 0 &&
        kept.rebuild_ == rebuilds_.load(std::memory_order_relaxed) &&
        isStillInPlace(*kept.region_, *kept.point_, *kept.value_, kept.svid_)) {
        return QelShmMVal(kept.value_);
    }
    syncPositions(false);
    return lookUp(kept);
}

QelShmMVal QelSharedMemoryReader::lookUp(QelShmKeptMVal& kept) {
    std::lock_guard<std::recursive_mutex> const lock(mutex_);
    kept.region_ = nullptr;
    kept.rebuild_ = rebuilds_;
    kept.point_ = pointOf(pointSvid(kept.svid_));
    if (kept.point_ == nullptr || kept.point_->guid != pointSvid(kept.svid_)) {
        return {};
    }
    auto const& mapped = *region();
    auto const pos = static_cast<std::uint32_t>(kept.point_ - mapped.points);
    if (!isLinkedToByPredecessor(mapped, pos) && !isInSiblingList(mapped, pos)) {
        return {};
    }
    auto left = MV_COUNT;
    for (auto value = loadLink(kept.point_->mvs); value < MV_COUNT && left != 0; --left) {
        auto const& slot = mapped.values[value];
        if (slot.key == valueKey(kept.svid_)) {
            kept.region_ = &mapped;
            kept.value_ = &slot;
            return QelShmMVal(&slot);
        }
        value = loadLink(slot.next);
    }
    return {};
}

} // namespace shm

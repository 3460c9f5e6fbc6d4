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

/// Whether the slots of a value that was found still hold it. True is sure; false may be wrong for an instant while the
/// writer links.
bool isStillThere(record::Region const& region, QelShmMP const& point, record::QelShmMVal const& value,
                  long long svid) {
    return point.guid == pointSvid(svid) && value.key == valueKey(svid) &&
           isReferred(region, static_cast<std::uint32_t>(&point - region.points)) &&
           isInChain(region, loadLink(point.mvs), static_cast<std::uint32_t>(&value - region.values));
}

void logModifications(char const* operation) {
    LogLine(readerLog, log4cpp::Priority::DEBUG, operation)
        << "modifications = " << modificationCounter.current();
}

} // namespace

/// Puts the visitor that builds the index into the place of the client's, and the client's back when it goes out of scope.
/// A visitor that is installed meanwhile stays instead.
class QelSharedMemoryReader::VisitorOnLeave {
public:
    VisitorOnLeave(QelSharedMemoryReader& reader, std::unique_ptr<IQelSharedMemoryVisitor> indexing)
        : reader_(reader),
          indexing_(indexing.get()),
          outer_(reader.indexing_),
          client_(std::make_unique<RetiredVisitor>()) {
        client_->visitor = std::move(reader.visitor_);
        reader.visitor(std::move(indexing));
        reader.indexing_ = indexing_;
    }
    ~VisitorOnLeave() {
        if (indexes()) {
            reader_.visitor_ = std::move(client_->visitor);
            reader_.indexing_ = outer_;
        } else {
            reader_.indexing_ = nullptr;
            VisitsOfThread::get().retire(std::move(client_));
        }
    }
    VisitorOnLeave(VisitorOnLeave const&) = delete;
    VisitorOnLeave& operator=(VisitorOnLeave const&) = delete;

    /// Whether the visitor that builds the index is the installed one still.
    bool indexes() const { return reader_.indexing_ == indexing_; }

private:
    QelSharedMemoryReader& reader_;
    IQelSharedMemoryVisitor const* indexing_;
    IQelSharedMemoryVisitor const* outer_; // of the rebuild that this one runs in, if any
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
        // Deliberate: one less, not zero, if the structure changed meanwhile, so that the next look-up rebuilds.
        modificationCounter.settle(before);
    } else {
        modificationCounter.keepPending();
    }
    logModifications("syncPositions");
}

/// Gives false when some of the points may be missing. The caller holds the mutex.
bool QelSharedMemoryReader::buildIndex() {
    auto indexing = std::make_unique<MPntPosVisitor>(positions_);
    auto result = std::make_shared<IQelVisitorResult>();
    auto const cuts = cuts_.load();
    ++rebuilds_;
    VisitorOnLeave const client(*this, std::move(indexing));
    positions_.clear();
    visit(result);
    return client.indexes() && cuts_ == cuts;
}

/// The slot of a point, null when the index does not know it. The caller holds the mutex.
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
    // In this order: who reads the 0 that a rebuild left reads that rebuild's number, too.
    if (kept.region_ != nullptr && kept.region_ == region() && modificationCounter.current() == 0 &&
        kept.rebuild_ == rebuilds_.load(std::memory_order_relaxed) &&
        isStillThere(*kept.region_, *kept.point_, *kept.value_, kept.svid_)) {
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
    if (!isReferred(mapped, pos) && !isListed(mapped, pos)) {
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

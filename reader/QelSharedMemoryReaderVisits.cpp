#include "reader/QelSharedMemoryReader.h"

#include "reader/QelShmMPntCmp.h"

#include "domain/SensorIdentifier.h"

#include <cstdint>
#include <limits>
#include <utility>

namespace shm {

void QelSharedMemoryReader::visitor(std::unique_ptr<IQelSharedMemoryVisitor> visitor) {
    visitor_ = std::move(visitor);
}

std::list<QelShmMPnt> QelSharedMemoryReader::mps(unsigned int first, SensorType::SensorType type) const {
    std::list<QelShmMPnt> points;
    if (auto const* const mapped = region()) {
        for (auto pos = first; pos < MP_COUNT; pos = mapped->points[pos].next) {
            auto const& slot = mapped->points[pos];
            if (type == SensorType::Any || type == SensorIdentifier::extractSensorType(slot.guid)) {
                points.emplace_back(&slot);
            }
        }
    }
    return points;
}

std::forward_list<QelShmMVal> QelSharedMemoryReader::mvs(unsigned int first) const {
    std::forward_list<QelShmMVal> values;
    if (auto const* const mapped = region()) {
        auto last = values.before_begin();
        for (auto pos = first; pos < MV_COUNT; pos = mapped->values[pos].next) {
            last = values.emplace_after(last, &mapped->values[pos]);
        }
    }
    return values;
}

void QelSharedMemoryReader::values(QelShmMPnt const& point, unsigned int depth,
                                   std::shared_ptr<IQelVisitorResult>& result) {
    auto const* const mapped = region();
    if (!visitor_ || mapped == nullptr) {
        return;
    }
    auto const svid = point->guid;
    for (auto pos = point->mvs; pos < MV_COUNT;) {
        auto const& slot = mapped->values[pos];
        visitor_->onMVal(QelShmMVal(&slot), svid, depth, result);
        if (visitor_->mvFound()) {
            return;
        }
        pos = slot.next;
    }
}

void QelSharedMemoryReader::visit() {
    auto result = std::make_shared<IQelVisitorResult>();
    visit(result);
}

void QelSharedMemoryReader::visit(std::shared_ptr<IQelVisitorResult>& result) {
    if (visitor_) {
        visitor_->onRoot(root(), result);
    }
    visitTopLevel(&record::QelShmRoot::devices, result);
    visitTopLevel(&record::QelShmRoot::groups, result);
}

[[gnu::always_inline]] // as a call it would double the stack that a level of nesting takes
inline void
QelSharedMemoryReader::visitChain(unsigned int first, unsigned int depth,
                                  std::shared_ptr<IQelVisitorResult>& result) {
    auto const* const mapped = region();
    for (auto pos = first; mapped != nullptr && pos < MP_COUNT;) {
        auto const& slot = mapped->points[pos];
        visit(QelShmMPnt(&slot), depth, result);
        pos = slot.next;
    }
}

void QelSharedMemoryReader::visitTopLevel(std::uint32_t record::QelShmRoot::*head,
                                          std::shared_ptr<IQelVisitorResult>& result) {
    if (!onDown(result)) {
        return;
    }
    if (auto const mapped = root()) {
        visitChain((*mapped).*head, 1, result);
    }
    onUp(result);
}

void QelSharedMemoryReader::visit(QelShmMPnt const& point, unsigned int depth) {
    auto result = std::make_shared<IQelVisitorResult>();
    visit(point, depth, result);
}

// The recursion is as deep as the points are nested, which may be 800 levels on a small stack: what needs
// much of it stays in functions of their own.
void QelSharedMemoryReader::visit(QelShmMPnt const& point, unsigned int depth,
                                  std::shared_ptr<IQelVisitorResult>& result) {
    if (stop_) {
        return;
    }
    if (visitor_) {
        visitor_->onMPnt(point, depth, result);
    }
    if (beforeValues(point->guid, depth, result)) {
        values(point, depth, result);
        afterValues(result);
    }
    if (!onDown(point, depth, result)) {
        return;
    }
    if (auto const children = point->children; children < MP_COUNT) {
        if (isSortedChain(children)) {
            visitChain(children, depth + 1, result);
        } else {
            visitSorted(children, depth + 1, result);
        }
    }
    onUp(result);
}

[[gnu::noinline]] void QelSharedMemoryReader::visitSorted(unsigned int first, unsigned int depth,
                                                          std::shared_ptr<IQelVisitorResult>& result) {
    auto points = mps(first, SensorType::Any);
    for (points.sort(QelShmMPntCmp()); !points.empty(); points.pop_front()) {
        visit(points.front(), depth, result);
    }
}

/// Whether sorting the chain would leave it as it is.
[[gnu::noinline]] bool QelSharedMemoryReader::isSortedChain(unsigned int first) const {
    auto const* const mapped = region();
    auto previous = std::numeric_limits<std::int64_t>::min();
    for (auto pos = first; mapped != nullptr && pos < MP_COUNT;) {
        auto const& slot = mapped->points[pos];
        auto const key = QelShmMPntCmp::key(slot.guid);
        if (key < previous) {
            return false;
        }
        previous = key;
        pos = slot.next;
    }
    return true;
}

bool QelSharedMemoryReader::onDown(std::shared_ptr<IQelVisitorResult>& /*result*/) {
    return true;
}

bool QelSharedMemoryReader::onDown(QelShmMPnt const& /*point*/, unsigned int /*depth*/,
                                   std::shared_ptr<IQelVisitorResult>& /*result*/) {
    return true;
}

void QelSharedMemoryReader::onUp(std::shared_ptr<IQelVisitorResult>& /*result*/) {}

bool QelSharedMemoryReader::beforeValues(long long /*svid*/, unsigned int /*depth*/,
                                         std::shared_ptr<IQelVisitorResult>& /*result*/) {
    return true;
}

void QelSharedMemoryReader::afterValues(std::shared_ptr<IQelVisitorResult>& /*result*/) {}

} // namespace shm

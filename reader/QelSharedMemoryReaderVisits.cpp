#include "reader/QelSharedMemoryReader.h"

#include "reader/QelShmMPntCmp.h"

#include "domain/SensorIdentifier.h"

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
    if (!visitor_) {
        return;
    }
    for (auto const& value : mvs(point->mvs)) {
        visitor_->onMVal(value, point->guid, depth, result);
        if (visitor_->mvFound()) {
            return;
        }
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

void QelSharedMemoryReader::visitTopLevel(std::uint32_t record::QelShmRoot::*head,
                                          std::shared_ptr<IQelVisitorResult>& result) {
    if (!onDown(result)) {
        return;
    }
    if (auto const mapped = root()) {
        for (auto const& point : mps((*mapped).*head, SensorType::Any)) {
            visit(point, 1, result);
        }
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
    for (auto children = sortedChildren(point); !children.empty(); children.pop_front()) {
        visit(children.front(), depth + 1, result);
    }
    onUp(result);
}

[[gnu::noinline]] std::list<QelShmMPnt> QelSharedMemoryReader::sortedChildren(QelShmMPnt const& point) const {
    auto children = mps(point->children, SensorType::Any);
    children.sort(QelShmMPntCmp());
    return children;
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

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelSharedMemoryReader.h"

#include "reader/PositionStack.h"
#include "reader/VisitsOfThread.h"
#include "reader/sortSiblings.h"
#include "region/RegionFields.h"

#include "domain/SensorIdentifier.h"

#include <cstdint>
#include <utility>

namespace shm {

void QelSharedMemoryReader::visitor(std::unique_ptr<IQelSharedMemoryVisitor> visitor) {
    auto& thread = VisitsOfThread::get();
    auto retired = visitor_ && thread.isInCallback() ? std::make_unique<RetiredVisitor>() : nullptr;
    if (visitor_.get() == indexing_) {
        indexing_ = nullptr;
    }
    visitor_.swap(visitor);
    if (retired) {
        retired->visitor = std::move(visitor);
        thread.retire(std::move(retired));
    }
}

std::list<QelShmMPnt> QelSharedMemoryReader::mps(unsigned int first, SensorType::SensorType type) const {
    std::list<QelShmMPnt> points;
    if (auto const* const mapped = region()) {
        auto left = MP_COUNT;
        for (auto pos = first; pos < MP_COUNT && left != 0;
             pos = loadLink(mapped->points[pos].next), --left) {
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
        auto left = MV_COUNT;
        for (auto pos = first; pos < MV_COUNT && left != 0;
             pos = loadLink(mapped->values[pos].next), --left) {
            last = values.emplace_after(last, &mapped->values[pos]);
        }
    }
    return values;
}

void QelSharedMemoryReader::values(QelShmMPnt const& point, unsigned int depth,
                                   std::shared_ptr<IQelVisitorResult>& result) {
    VisitsOfThread::Callback const callback(VisitsOfThread::get());
    valuesTo(point, depth, result);
}

[[gnu::always_inline]] inline bool QelSharedMemoryReader::tell(IQelSharedMemoryVisitor& visitor,
                                                               QelShmMVal const& value, long long svid,
                                                               unsigned int depth,
                                                               std::shared_ptr<IQelVisitorResult>& result) {
    visitor.onMVal(value, svid, depth, result);
    return visitor_.get() == &visitor && !visitor.mvFound();
}

void QelSharedMemoryReader::valuesTo(QelShmMPnt const& point, unsigned int depth,
                                     std::shared_ptr<IQelVisitorResult>& result) {
    auto* const visitor = visitor_.get();
    auto const* const mapped = region();
    auto const first = loadLink(point->mvs);
    if (visitor == nullptr || visitor == indexing_ || mapped == nullptr || first >= MV_COUNT) {
        return;
    }
    // A point's values nearly always lie side by side, in their order. Then the first and the last slot are enough.
    auto const* slot = &mapped->values[first];
    auto const* last = slot;
    auto following = first + 1;
    auto next = loadLink(last->next);
    while (next == following && next != MV_COUNT) {
        ++last;
        ++following;
        next = loadLink(last->next);
    }
    if (next < MV_COUNT) {
        scatteredValuesTo(point, depth, result);
        return;
    }
    auto const svid = point->guid;
    while (tell(*visitor, QelShmMVal(slot), svid, depth, result) && slot != last) {
        ++slot;
    }
}

[[gnu::noinline]] void QelSharedMemoryReader::scatteredValuesTo(QelShmMPnt const& point, unsigned int depth,
                                                                std::shared_ptr<IQelVisitorResult>& result) {
    auto& visitor = *visitor_;
    auto const* const slots = region()->values;
    PositionList list(VisitsOfThread::get().positions());
    list.collect(slots, MV_COUNT, loadLink(point->mvs));
    auto const svid = point->guid;
    auto const end = list.endPlace();
    for (auto place = list.firstPlace(); place != end; ++place) {
        if (!tell(visitor, QelShmMVal(&slots[list.at(place)]), svid, depth, result)) {
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
        VisitsOfThread::Callback const callback(VisitsOfThread::get());
        visitor_->onRoot(root(), result);
    }
    visitTopLevel(&record::QelShmRoot::devices, result);
    visitTopLevel(&record::QelShmRoot::groups, result);
}

[[gnu::always_inline]] // a call would double the stack of a level of nesting
inline void
QelSharedMemoryReader::visitList(PositionList const& list, unsigned int depth,
                                 std::shared_ptr<IQelVisitorResult>& result) {
    for (auto place = list.firstPlace(); place != list.endPlace(); ++place) {
        visit(QelShmMPnt(&region()->points[list.at(place)]), depth, result);
    }
}

void QelSharedMemoryReader::visitTopLevel(std::uint32_t record::QelShmRoot::*head,
                                          std::shared_ptr<IQelVisitorResult>& result) {
    if (!onDown(result)) {
        return;
    }
    if (auto const mapped = root()) {
        PositionList list(VisitsOfThread::get().positions());
        list.collect(region()->points, MP_COUNT, loadLink((*mapped).*head));
        visitList(list, 1, result);
    }
    onUp(result);
}

void QelSharedMemoryReader::visit(QelShmMPnt const& point, unsigned int depth) {
    auto result = std::make_shared<IQelVisitorResult>();
    visit(point, depth, result);
}

// The recursion is as deep as the tree, up to 800 levels, and the stack may be small. So code with large frames is in
// functions of its own.
void QelSharedMemoryReader::visit(QelShmMPnt const& point, unsigned int depth,
                                  std::shared_ptr<IQelVisitorResult>& result) {
    if (stop_) {
        ++cuts_;
        return;
    }
    {
        VisitsOfThread::Callback const callback(VisitsOfThread::get());
        if (visitor_) {
            visitor_->onMPnt(point, depth, result);
        }
        if (beforeValues(point->guid, depth, result)) {
            valuesTo(point, depth, result);
            afterValues(result);
        }
    }
    if (!onDown(point, depth, result)) {
        return;
    }
    if (auto const first = loadLink(point->children); first < MP_COUNT && region() != nullptr) {
        PositionList children(VisitsOfThread::get().positions());
        collectSorted(children, first);
        visitList(children, depth + 1, result);
    }
    onUp(result);
}

[[gnu::noinline]] void QelSharedMemoryReader::collectSorted(PositionList& list, unsigned int head) const {
    auto const* const points = region()->points;
    list.collect(points, MP_COUNT, head);
    auto* const first = &list.at(list.firstPlace());
    sortSiblings(points, first, first + (list.endPlace() - list.firstPlace()));
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

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/literal/Reader.h"

#include "bench/literal/Log.h"
#include "bench/literal/Writer.h"
#include "domain/SensorIdentifier.h"
#include "reader/BaseQelShmVisitor.h"

#include <utility>

namespace bench::literal {

namespace {

class PositionVisitor : public shm::BaseQelShmVisitor {
public:
    explicit PositionVisitor(std::unordered_map<long long, std::uint32_t>& positions)
        : positions_(&positions) {}

    void onMPnt(shm::QelShmMPnt const& point, unsigned int /*depth*/,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        positions_->insert(std::make_pair(static_cast<long long>(point->guid), point->pos));
    }

private:
    std::unordered_map<long long, std::uint32_t>* positions_;
};

struct PointCmp {
    static long long key(long long svid) {
        auto const type = SensorIdentifier::extractSensorType(svid);
        auto bits = static_cast<std::uint64_t>(svid);
        if (type == SensorType::I2C) {
            bits &= ~0x0000FF0000FF0000ULL;
        } else if (type == SensorType::RCM) {
            bits = (bits & ~0x00FF00000000FFFFULL) | 4;
        }
        return static_cast<long long>(bits);
    }

    bool operator()(shm::QelShmMPnt const& left, shm::QelShmMPnt const& right) const {
        return key(left->guid) < key(right->guid);
    }
};

} // namespace

Reader::Reader()
    : object_(objectName, shm::REGION_SIZE, SharedObject::Access::Read),
      region_(static_cast<shm::record::Region const*>(object_.data())),
      modifications_(1),
      positions_(10) {}

Reader::~Reader() = default;

void Reader::syncPositions(bool force) {
    if (!force && modifications_ == 0) {
        return;
    }
    unsigned int const before = modifications_;
    std::lock_guard<std::recursive_mutex> const lock(mutex_);
    auto saved = std::move(visitor_);
    positions_.clear();
    visitor(std::make_unique<PositionVisitor>(positions_));
    auto result = std::make_shared<shm::IQelVisitorResult>();
    visit(result);
    visitor_ = std::move(saved);
    if (modifications_ == before) {
        modifications_ = 0;
    } else {
        --modifications_;
    }
    Line(readerCategory, log4cpp::Priority::DEBUG, "syncPositions")
        << "modifications = " << modifications_.load();
}

std::unique_ptr<shm::QelShmMPnt> Reader::mpnt(long long svid, bool force) {
    syncPositions(force);
    std::lock_guard<std::recursive_mutex> const lock(mutex_);
    auto const found = positions_.find(svid);
    if (found != positions_.end() && found->second < shm::MP_COUNT) {
        return std::make_unique<shm::QelShmMPnt>(&region_->points[found->second]);
    }
    return nullptr;
}

void Reader::visitor(std::unique_ptr<shm::IQelSharedMemoryVisitor> visitor) {
    visitor_ = std::move(visitor);
}

std::list<shm::QelShmMPnt> Reader::mps(unsigned int first, SensorType::SensorType type) const {
    std::list<shm::QelShmMPnt> points;
    for (auto pos = first; pos < shm::MP_COUNT; pos = region_->points[pos].next) {
        auto const& slot = region_->points[pos];
        if (type == SensorType::Any || SensorIdentifier::extractSensorType(slot.guid) == type) {
            points.emplace_back(&slot);
        }
    }
    return points;
}

std::forward_list<shm::QelShmMVal> Reader::mvs(unsigned int first) const {
    std::forward_list<shm::QelShmMVal> values;
    auto last = values.before_begin();
    for (auto pos = first; pos < shm::MV_COUNT; pos = region_->values[pos].next) {
        last = values.insert_after(last, shm::QelShmMVal(&region_->values[pos]));
    }
    return values;
}

void Reader::values(shm::QelShmMPnt const& point, unsigned int depth,
                    std::shared_ptr<shm::IQelVisitorResult>& result) {
    if (!visitor_) {
        return;
    }
    for (auto const& value : mvs(point->mvs)) {
        visitor_->onMVal(value, point->guid, depth, result);
        if (visitor_->mvFound()) {
            break;
        }
    }
}

void Reader::visit(std::shared_ptr<shm::IQelVisitorResult>& result) {
    if (visitor_) {
        visitor_->onRoot(shm::QelShmRoot(region_), result);
    }
    for (auto const head : {region_->root.devices, region_->root.groups}) {
        if (onDown(result)) {
            for (auto const& point : mps(head, SensorType::Any)) {
                visit(point, 1, result);
            }
            onUp(result);
        }
    }
}

void Reader::visit(shm::QelShmMPnt const& point, unsigned int depth,
                   std::shared_ptr<shm::IQelVisitorResult>& result) {
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
    auto children = mps(point->children, SensorType::Any);
    children.sort(PointCmp());
    for (auto const& child : children) {
        visit(child, depth + 1, result);
    }
    onUp(result);
}

bool Reader::onDown(std::shared_ptr<shm::IQelVisitorResult>& /*result*/) {
    return true;
}

bool Reader::onDown(shm::QelShmMPnt const& /*point*/, unsigned int /*depth*/,
                    std::shared_ptr<shm::IQelVisitorResult>& /*result*/) {
    return true;
}

void Reader::onUp(std::shared_ptr<shm::IQelVisitorResult>& /*result*/) {}

bool Reader::beforeValues(long long /*svid*/, unsigned int /*depth*/,
                          std::shared_ptr<shm::IQelVisitorResult>& /*result*/) {
    return true;
}

void Reader::afterValues(std::shared_ptr<shm::IQelVisitorResult>& /*result*/) {}

} // namespace bench::literal

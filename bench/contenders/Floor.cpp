// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/contenders/Floor.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace bench {

namespace {

using shm::record::Region;

} // namespace

Floor::Input::Input(Plan const& plan) {
    std::uint32_t pos = 0;
    for (auto const& point : plan.points()) {
        shm::record::QelShmMP slot{};
        std::memset(static_cast<void*>(&slot), shm::WIPE_BYTE, sizeof slot);
        slot.pos = pos;
        slot.next = point.next;
        slot.prev = point.prev;
        slot.mvs = valueSlot(pos, 0);
        slot.children = point.children;
        slot.parent = point.parent;
        slot.guid = point.svid;
        slot.at = 0;
        slot.state = eStatus_On;
        slot.type = 0;
        points_.push_back(slot);
        ++pos;
    }
}

void Floor::Writer::open() {
    object_.emplace(objectName, shm::REGION_SIZE, SharedObject::Access::Create);
    region_ = static_cast<Region*>(object_->data());
    std::memset(static_cast<void*>(region_), shm::WIPE_BYTE, shm::REGION_SIZE);
}

void Floor::Writer::build(Input const& input) {
    for (auto const& point : input.points()) {
        region_->points[point.pos] = point;
        for (std::size_t key = 0; key < valueKeys.size(); ++key) {
            auto const slot = valueSlot(point.pos, key);
            auto& value = region_->values[slot];
            shm::storeField(value.value, 0);
            shm::storeField(value.at, 0);
            shm::storeField(value.state, eStatus_ExpectedValue);
            shm::storeField(value.next, key + 1 < valueKeys.size() ? slot + 1 : shm::NO_POSITION);
            shm::storeField(value.key, valueKeys.at(key));
        }
    }
    points_ = static_cast<std::uint32_t>(input.points().size());
}

// Children have higher slots than their parents, so one way back over the array reaches them first. The worst of two
// states is the greater one here.
void Floor::Writer::propagate() {
    std::array<eStatus_Bits, shm::MP_COUNT> worst{};
    for (auto pos = points_; pos-- > 0;) {
        auto state = worst.at(pos);
        for (std::size_t key = 0; key < valueKeys.size(); ++key) {
            state = std::max(state, region_->values[valueSlot(pos, key)].state);
        }
        auto& point = region_->points[pos];
        shm::storeField(point.state, state);
        if (point.parent < shm::MP_COUNT) {
            worst.at(point.parent) = std::max(worst.at(point.parent), state);
        }
    }
}

Floor::Reader::Reader(Plan const& plan)
    : object_(objectName, shm::REGION_SIZE, SharedObject::Access::Read),
      region_(static_cast<Region const*>(object_.data())),
      values_(plan.points().size() * valueKeys.size()),
      positions_(plan.points().size()) {}

} // namespace bench

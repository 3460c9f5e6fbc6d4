// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/SelectedValues.h"

#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"
#include "inspect/naming/StateClass.h"
#include "region/SvidParts.h"

#include <algorithm>
#include <string>

namespace qel::inspect {

void SelectedValues::follow(FrameRegion const& region) {
    if (!region.isActive()) {
        records_ = nullptr;
        isLocated_ = false;
        return;
    }
    records_ = &region.records();
    if (!isLocated_ || region.hasChangedStates()) {
        locate(region);
        isLocated_ = true;
    }
}

shm::record::QelShmMVal const* SelectedValues::value(std::size_t index) const {
    if (records_ == nullptr || index >= slots_.size() || slots_[index] == shm::NO_POSITION) {
        return nullptr;
    }
    return &records_->values[slots_[index]];
}

void SelectedValues::locate(FrameRegion const& region) {
    std::fill(slots_.begin(), slots_.end(), shm::NO_POSITION);
    PointTree const tree(region.image());
    for (auto const& node : tree.nodes()) {
        auto const point = shm::pointSvid(records_->points[node.pos].guid);
        for (auto const pos : tree.valuesOf(node)) {
            auto const key = records_->values[pos].key;
            if (key != shm::NO_KEY && isSelected({point, key})) {
                auto& slot = slots_.at(indexOf({point, key}));
                slot = slot == shm::NO_POSITION ? pos : slot; // the first one of an id, as for a reader
            }
        }
    }
}

bool SelectedValues::isSelected(Id const& id) {
    if (isSelected_.size() >= most) {
        isSelected_.clear(); // a damaged capture may name any number of values
    }
    auto const [place, isNew] = isSelected_.try_emplace(id, false);
    if (isNew) {
        place->second = selectsValue(patterns_, id.first, id.second);
    }
    return place->second;
}

std::size_t SelectedValues::indexOf(Id const& id) {
    auto const [place, isNew] = indexOf_.try_emplace(id, names_.size());
    if (isNew) {
        if (names_.size() == most) {
            throw TooManyValuesError("the capture has more than " + std::to_string(most) +
                                     " different values; choose some by name");
        }
        names_.push_back({id.first, id.second});
        slots_.push_back(shm::NO_POSITION);
    }
    return place->second;
}

std::optional<double> deliveredNumber(shm::record::QelShmMVal const* value) {
    return value != nullptr ? numberIn(value->state, value->value) : std::nullopt;
}

} // namespace qel::inspect

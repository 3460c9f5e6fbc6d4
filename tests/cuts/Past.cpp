// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/Past.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace qel::test {

Past::Past(std::vector<Picture> pictures, Picture hidden, std::vector<WriterBench::Stored> const& stored)
    : pictures_(std::move(pictures)),
      hidden_(std::move(hidden)) {
    auto const addAll = [this](auto const& all, std::size_t moment) {
        for (auto const& seen : all) {
            auto& known = entry(seen);
            known.present |= Moments{1} << moment;
            known.seen[moment] = &seen;
        }
    };
    for (std::size_t moment = 0; moment < pictures_.size(); ++moment) {
        addAll(pictures_[moment].points, moment);
        addAll(pictures_[moment].values, moment);
    }
    for (auto const& seen : hidden_.points) {
        entry(seen).hidden.push_back(&seen);
    }
    for (auto const& seen : hidden_.values) {
        entry(seen).hidden.push_back(&seen);
    }
    for (auto& value : values_) {
        std::copy_if(
            stored.begin(), stored.end(), std::back_inserter(value.stored),
            [&](auto const& content) { return content.owner == value.owner && content.key == value.key; });
    }
}

Past::Point& Past::entry(SeenPoint const& seen) {
    auto known = std::find_if(points_.begin(), points_.end(),
                              [&](auto const& point) { return point.guid == seen.guid; });
    if (known == points_.end()) {
        Point fresh;
        fresh.guid = seen.guid;
        fresh.seen.resize(pictures_.size());
        known = points_.insert(known, std::move(fresh));
    }
    return *known;
}

Past::Value& Past::entry(SeenValue const& seen) {
    auto known = std::find_if(values_.begin(), values_.end(), [&](auto const& value) {
        return value.owner == seen.owner && value.key == seen.key;
    });
    if (known == values_.end()) {
        Value fresh;
        fresh.owner = seen.owner;
        fresh.key = seen.key;
        fresh.seen.resize(pictures_.size());
        known = values_.insert(known, std::move(fresh));
    }
    return *known;
}

Past::Point const* Past::point(std::int64_t guid) const {
    for (auto const& point : points_) {
        if (point.guid == guid) {
            return &point;
        }
    }
    return nullptr;
}

Past::Value const* Past::value(std::int64_t owner, std::uint16_t key) const {
    for (auto const& value : values_) {
        if (value.owner == owner && value.key == key) {
            return &value;
        }
    }
    return nullptr;
}

bool Past::hadPoint(std::uint32_t slot, std::int64_t guid) const {
    auto const* const known = point(guid);
    return known != nullptr && (when(known->seen, &SeenPoint::slot, slot) != 0 ||
                                when(known->hidden, &SeenPoint::slot, slot) != 0);
}

bool Past::hadValue(std::uint32_t slot, std::int64_t owner, std::uint16_t key) const {
    auto const* const known = value(owner, key);
    return known != nullptr && (when(known->seen, &SeenValue::slot, slot) != 0 ||
                                when(known->hidden, &SeenValue::slot, slot) != 0);
}

} // namespace qel::test

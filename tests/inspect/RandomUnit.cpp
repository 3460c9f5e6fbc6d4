// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/inspect/RandomUnit.h"

#include "format/ValueKeys.h"
#include "region/Exceptions.h"
#include "tests/model/ReferenceSvid.h"

#include <algorithm>
#include <iterator>

namespace qel::test {

namespace {

/// Whether a point hangs below another one, however deep.
bool isBelow(long long svid, long long above) {
    auto candidates = reference::parentCandidates(svid);
    while (!candidates.empty()) {
        if (std::find(candidates.begin(), candidates.end(), above) != candidates.end()) {
            return true;
        }
        candidates = reference::parentCandidates(candidates.back());
    }
    return false;
}

} // namespace

RandomUnit::RandomUnit(std::uint32_t seed, int largest, bool leaveOrphans)
    : random_(seed),
      largest_(largest),
      leaveOrphans_(leaveOrphans) {
    writer_.setActive();
}

inspect::Image RandomUnit::image() {
    return {writer_.region(), sizeof(shm::record::Region)};
}

long long RandomUnit::anyPoint() {
    int const spread = largest_ > 100 ? 12 : 3;
    int const device = number(1, 3);
    int const inlet = number(1, 2);
    int const phase = chance(40) ? number(1, 3) : -1;
    switch (number(0, 9)) {
    case 0:
        return pointId(device, 0);
    case 1:
        return pointId(device, 0, inlet);
    case 2:
        return pointId(device, 0, inlet, number(1, 3));
    case 3:
        return pointId(device, 0, inlet, phase, number(1, spread));
    case 4:
        return pointId(device, 1, inlet, number(1, spread), number(-1, 3));
    case 5:
        return chance(50) ? pointId(device, 2, -1, -1, -1, number(1, spread)) : pointId(device, 2, inlet);
    case 6:
        return chance(50) ? pointId(device, 4, inlet) : pointId(device, 4, inlet, -1, number(1, spread));
    case 7:
        return pointId(device, 0, inlet, number(1, 3), 0, number(1, spread)); // without a fuse of its own
    default:
        return pointId(device, 0, inlet, phase, number(1, spread), number(1, spread));
    }
}

long long RandomUnit::anyKnown() {
    return std::next(points_.begin(), number(0, static_cast<int>(points_.size()) - 1))->first;
}

void RandomUnit::insertWithParents(long long svid) {
    std::vector<long long> way{svid};
    for (auto above = reference::parentCandidates(svid); !above.empty();
         above = reference::parentCandidates(above.back())) {
        way.push_back(above.back());
    }
    for (auto const point : way) {
        auto const [known, isNew] = points_.try_emplace(point);
        for (int count = isNew ? number(0, 4) : 0; count > 0; --count) {
            known->second.insert(static_cast<unsigned short>(number(1, 40)));
        }
    }
}

void RandomUnit::grow(int count) {
    for (; count > 0 && static_cast<int>(points_.size()) < largest_; --count) {
        insertWithParents(anyPoint());
    }
}

void RandomUnit::removeSubtree(long long svid) {
    for (auto point = points_.begin(); point != points_.end();) {
        point = point->first == svid || isBelow(point->first, svid) ? points_.erase(point) : std::next(point);
    }
}

void RandomUnit::changeStructure() {
    int const dice = number(1, 100);
    if (dice <= 10) {
        points_.clear();
    }
    if (dice <= 60) {
        grow(number(1, std::max(2, largest_ / 4)));
    }
    if (dice > 50 && !points_.empty()) {
        ++removals_;
        if (leaveOrphans_ && chance(50)) {
            points_.erase(anyKnown());
        } else {
            removeSubtree(anyKnown());
        }
    }
    if (dice > 90 && !points_.empty()) {
        points_[anyKnown()].insert(static_cast<unsigned short>(number(1, 200)));
    }
}

void RandomUnit::modify() {
    std::unordered_set<long long> svids;
    for (auto const& [svid, keys] : points_) {
        svids.insert(svid);
        for (auto const key : keys) {
            svids.insert(svid | key);
        }
    }
    try {
        writer_.modifyStructure(svids);
    } catch (ex::InvalidSensorIdException const&) {
        // A child of a point that was removed above it. What was added before stays; begin anew.
        ++refusals_;
        points_.clear();
        writer_.removeStructure({});
    }
}

void RandomUnit::deliver() {
    if (points_.empty()) {
        return;
    }
    for (int count = number(0, 4); count > 0; --count) {
        auto const svid = anyKnown();
        auto const& keys = points_[svid];
        auto const state = static_cast<eStatus_Bits>(chance(50) ? number(-2, 4) : number(-2, 43));
        auto const key = keys.empty() || chance(20) ? shm::key::fuseState : *keys.begin();
        writer_.updateMV(svid | key, measured(number(-1000, 1000) / 7.0, 1, state));
    }
}

void RandomUnit::stepWithoutPropagation() {
    changeStructure();
    modify();
    deliver();
}

} // namespace qel::test

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelShmPointRange.h"

#include "domain/SensorType.h"
#include "reader/sortSiblings.h"

#include <algorithm>

namespace shm {

namespace {

constexpr std::uint8_t rootLists = 2;

/// Tells whether points whose ids ascend are in the order of visits: if all are of one device and kind, and of a kind whose
/// sort keys ascend with the ids.
bool isSortedById(std::int64_t lowest, std::int64_t highest) {
    constexpr unsigned int belowKind = 48;
    return lowest >> belowKind == highest >> belowKind &&
           static_cast<std::int8_t>(lowest >> belowKind) != SensorType::I2C;
}

/// Counts the points of a list if all of it lie side by side in the order of visits; 0 if not.
std::uint32_t lengthOfRun(QelShmMP const* points, std::uint32_t first) {
    auto const* slot = points + first;
    auto following = first + 1;
    auto next = loadLink(slot->next);
    while (next == following && following != MP_COUNT && slot[1].guid >= slot[0].guid) {
        ++slot;
        ++following;
        next = loadLink(slot->next);
    }
    return next >= MP_COUNT && isSortedById(points[first].guid, slot->guid) ? following - first : 0;
}

} // namespace

QelShmPointRange::Run QelShmPointRange::firstRun() {
    depth_ = 0;
    left_ = mostPoints;
    used_ = 0;
    listsLeft_ = region_ != nullptr ? rootLists : 0;
    return topLevel();
}

QelShmPointRange::Run QelShmPointRange::topLevel() {
    while (listsLeft_ != 0) {
        auto const& root = region_->root;
        auto const first = loadLink(listsLeft_-- == rootLists ? root.devices : root.groups);
        if (first < MP_COUNT && collectEach(first)) {
            return runAt(levels_[0]);
        }
    }
    return {};
}

QelShmPointRange::Run QelShmPointRange::childrenOf(QelShmMP const* parent, std::uint32_t first) {
    auto& level = levels_[depth_ - 1];
    if ((level.end & isCollected) == 0) {
        level.current = static_cast<std::uint16_t>(parent - region_->points);
    }
    if (depth_ == MP_COUNT) {
        return goOn();
    }
    // Siblings often lie side by side, in their order. Then the first and the last position are enough.
    if (auto const count = lengthOfRun(region_->points, first); count != 0 && count <= left_) {
        left_ -= count;
        auto const end = first + count;
        levels_[depth_++] = {static_cast<std::uint16_t>(first), static_cast<std::uint16_t>(end)};
        return {region_->points + first, region_->points + end};
    }
    return each(first);
}

[[gnu::noinline]] QelShmPointRange::Run QelShmPointRange::each(std::uint32_t first) {
    return collectEach(first) ? runAt(levels_[depth_ - 1]) : goOn();
}

QelShmPointRange::Run QelShmPointRange::behindRun() {
    auto& level = levels_[depth_ - 1];
    if ((level.end & isCollected) == 0) {
        level.current = static_cast<std::uint16_t>(level.end - 1);
    }
    return goOn();
}

inline QelShmPointRange::Run QelShmPointRange::goOn() {
    do {
        auto& level = levels_[depth_ - 1];
        if (++level.current != level.end) {
            return runAt(level);
        }
    } while (--depth_ != 0);
    return topLevel();
}

bool QelShmPointRange::collectEach(std::uint32_t first) {
    auto const* const points = region_->points;
    auto const begin = used_;
    auto const end = begin + std::min(MP_COUNT, left_);
    auto const lowest = points[first].guid;
    auto highest = lowest;
    bool isSorted = true;
    for (auto pos = first; pos < MP_COUNT && used_ != end; pos = loadLink(points[pos].next)) {
        collected_[used_++] = static_cast<std::uint16_t>(pos);
        auto const guid = points[pos].guid;
        isSorted = isSorted && guid >= highest;
        highest = guid;
    }
    if (used_ == begin) {
        return false;
    }
    if (depth_ != 0 && !(isSorted && isSortedById(lowest, highest))) {
        sortSiblings(points, &collected_[begin], collected_.data() + used_);
    }
    left_ -= static_cast<std::uint32_t>(used_ - begin);
    levels_[depth_++] = {static_cast<std::uint16_t>(begin | isCollected),
                         static_cast<std::uint16_t>(used_ | isCollected)};
    return true;
}

inline QelShmPointRange::Run QelShmPointRange::runAt(Level const& level) const {
    auto const* const first = slotAt(level.current);
    return {first, (level.end & isCollected) != 0 ? first + 1 : region_->points + level.end};
}

} // namespace shm

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/RegionStatus.h"

#include "inspect/image/PointTree.h"

#include "region/QelShmCondition.h"

#include <algorithm>

namespace qel::inspect {

namespace {

/// Counts the points and values in the tree and finds the newest delivery.
void addContent(RegionStatus& status, Image const& image, std::uint64_t now) {
    PointTree const tree(image);
    status.pointsUsed = tree.nodes().size();
    status.valuesUsed = tree.values().size();
    auto const& region = image.region();
    auto const take = [&](std::uint64_t at) {
        status.newest = std::max(status.newest, at);
        if (isAhead(at, now)) {
            ++status.ahead;
        } else {
            status.newestKnown = std::max(status.newestKnown, at);
        }
    };
    for (auto const& node : tree.nodes()) {
        take(region.points[node.pos].at);
    }
    for (auto const pos : tree.values()) {
        take(region.values[pos].at);
    }
}

Condition conditionOf(RegionStatus const& status, Image const& image, std::uint64_t now,
                      std::optional<std::chrono::milliseconds> maxAge) {
    if (status.source.opening == Opening::Absent) {
        return Condition::Absent;
    }
    if (status.source.opening != Opening::Opened) {
        return Condition::Unreadable;
    }
    shm::QelShmRegionFacts facts;
    facts.isHeld = true;
    facts.isNamed = true; // perhaps it is not: the source does not distinguish "gone" from "replaced"
    facts.isSame = !status.source.isReplaced;
    facts.isActive = image.isActive();
    facts.newest = status.newestKnown;
    facts.now = now;
    constexpr auto greatest = shm::ANY_AGE - std::chrono::milliseconds(1);
    auto const condition = shm::conditionOf(facts, maxAge ? std::min(*maxAge, greatest) : shm::ANY_AGE);
    if (facts.isSame && !image.isWhole()) {
        return Condition::TooShort;
    }
    switch (condition) {
    case shm::QelShmCondition::Active:
        return Condition::Active;
    case shm::QelShmCondition::Silent:
        return Condition::Silent;
    case shm::QelShmCondition::Inactive:
        return Condition::Inactive;
    case shm::QelShmCondition::Replaced:
    case shm::QelShmCondition::Gone:
        break;
    }
    return Condition::Replaced;
}

} // namespace

char const* conditionName(Condition condition) {
    switch (condition) {
    case Condition::Absent:
        return "absent";
    case Condition::Unreadable:
        return "unreadable";
    case Condition::Replaced:
        return "replaced";
    case Condition::TooShort:
        return "too short";
    case Condition::Inactive:
        return "inactive";
    case Condition::Silent:
        return "silent";
    case Condition::Active:
        return "active";
    }
    return "";
}

RegionStatus regionStatus(RegionSource const& source, Image const& image, std::uint64_t now,
                          std::optional<std::chrono::milliseconds> maxAge) {
    RegionStatus status;
    status.source = source;
    status.size = image.size();
    status.version = image.root().version;
    status.globalState = image.root().state;
    addContent(status, image, now);
    status.condition = conditionOf(status, image, now, maxAge);
    return status;
}

} // namespace qel::inspect

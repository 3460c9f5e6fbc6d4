// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/capture/SampleImage.h"

#include "tools/common/TimeText.h"

#include "inspect/image/PointTree.h"
#include "region/QelShmRecords.h"

#include <memory>
#include <utility>

namespace qel::tools {

namespace {

using inspect::LinkField;
using inspect::SlotKind;
using shm::record::Region;

std::uint32_t& linkOf(Region& region, inspect::SkippedLink const& link) {
    if (link.fromKind == SlotKind::Value) {
        return region.values[link.fromPos].next;
    }
    if (link.fromKind == SlotKind::Root) {
        return link.field == LinkField::Groups ? region.root.groups : region.root.devices;
    }
    auto& point = region.points[link.fromPos];
    switch (link.field) {
    case LinkField::Children:
        return point.children;
    case LinkField::Values:
        return point.mvs;
    default:
        return point.next;
    }
}

void restamp(std::uint64_t& time, std::function<std::uint64_t(std::uint64_t)> const& stampOf) {
    if (time != 0 && isCalendarTime(time)) {
        time = stampOf(time);
    }
}

} // namespace

MendedImage withoutCircles(inspect::Image const& image) {
    inspect::PointTree const tree(image);
    auto const& links = tree.skippedLinks();
    if (links.empty()) {
        return {image};
    }
    auto region = std::make_unique<Region>(image.region());
    for (auto const& link : links) {
        linkOf(*region, link) = shm::NO_POSITION;
    }
    return {inspect::Image(std::move(region), image.size()), links.size()};
}

inspect::Image restamped(inspect::Image const& image,
                         std::function<std::uint64_t(std::uint64_t)> const& stampOf) {
    auto region = std::make_unique<Region>(image.region());
    inspect::PointTree const tree(image);
    for (auto const& node : tree.nodes()) {
        restamp(region->points[node.pos].at, stampOf);
    }
    for (auto const pos : tree.values()) {
        restamp(region->values[pos].at, stampOf);
    }
    return {std::move(region), image.size()};
}

} // namespace qel::tools

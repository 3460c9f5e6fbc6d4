// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/why/ValueSummary.h"

#include "inspect/image/RegionStatus.h"
#include "inspect/naming/StateClass.h"

#include "region/SvidParts.h"

#include <algorithm>

namespace qel::inspect {

namespace {

std::uint64_t newestTime(Image const& image, PointTree const& tree, std::uint64_t now) {
    std::uint64_t newest = 0;
    for (auto const pos : tree.values()) {
        auto const at = image.region().values[pos].at;
        newest = isAhead(at, now) ? newest : std::max(newest, at);
    }
    return newest;
}

} // namespace

void StateCounts::add(eStatus_Bits state) {
    if (state == eStatus_Lost) {
        ++lost;
        return;
    }
    auto const kind = classOf(state);
    alarm += kind == StateClass::Alarm ? 1 : 0;
    warning += kind == StateClass::Warning ? 1 : 0;
}

ValueSummary valueSummary(Image const& image, PointTree const& tree, std::uint64_t now,
                          std::chrono::milliseconds staleAfter) {
    auto const newest = newestTime(image, tree, now);
    auto const longest = static_cast<std::uint64_t>(staleAfter.count());
    ValueSummary summary;
    for (auto const& node : tree.nodes()) {
        for (auto const pos : tree.valuesOf(node)) {
            auto const& value = image.region().values[pos];
            summary.add(value.state);
            if (value.at == 0) {
                ++summary.never;
                continue;
            }
            summary.stale += value.at < newest && newest - value.at > longest ? 1 : 0;
            if (!summary.oldest || value.at < summary.oldest->at) {
                summary.oldest = {shm::pointSvid(image.region().points[node.pos].guid), value.key, value.at};
            }
        }
    }
    return summary;
}

std::size_t lostValues(Image const& image, PointTree const& tree, std::uint32_t node) {
    auto const& nodes = tree.nodes();
    std::uint32_t const first = node == NO_NODE ? 0 : node;
    auto const end = node == NO_NODE ? nodes.size() : nodes.at(node).end;
    std::size_t count = 0;
    for (std::size_t index = first; index < end; ++index) {
        auto const positions = tree.valuesOf(nodes[index]);
        count += static_cast<std::size_t>(
            std::count_if(positions.begin(), positions.end(), [&](std::uint32_t pos) {
                return image.region().values[pos].state == eStatus_Lost;
            }));
    }
    return count;
}

} // namespace qel::inspect

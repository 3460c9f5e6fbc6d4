// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/unit/Structure.h"

#include <algorithm>
#include <iterator>

namespace qel::tools {

long long valueSvid(ValueId const& value) {
    return pointSvid(value.point) | value.key;
}

Structure::Structure(std::vector<ValueId> const& values) : values_(values) {
    addPoint(unitPoint);
    for (auto const& value : values) {
        addPoint(value.point);
        svids_.insert(valueSvid(value));
    }
}

void Structure::addPoint(PointId const& point) {
    if (has(point)) {
        return;
    }
    points_.push_back(point);
    svids_.insert(valueSvid({point, stateKey(point.kind)}));
    if (auto const parent = parentPoint(point)) {
        addPoint(*parent);
    }
}

bool Structure::has(PointId const& point) const {
    return std::find(points_.begin(), points_.end(), point) != points_.end();
}

shm::QelSharedMemoryWriter::Definitions Structure::definitions() const {
    shm::QelSharedMemoryWriter::Definitions definitions;
    for (auto const& point : points_) {
        definitions.try_emplace(pointSvid(point));
    }
    for (auto const& value : values_) {
        definitions[pointSvid(value.point)].mvs.emplace(value.key, shm::NO_POSITION);
    }
    return definitions;
}

std::vector<PointId> Structure::pointsMissingIn(Structure const& other) const {
    std::vector<PointId> missing;
    std::copy_if(points_.begin(), points_.end(), std::back_inserter(missing),
                 [&](PointId const& point) { return !other.has(point); });
    return missing;
}

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/AlarmEdges.h"

#include "inspect/image/PointTree.h"
#include "inspect/naming/StateClass.h"

#include <algorithm>

namespace qel::inspect {

bool AlarmEdges::add(Image const& image) {
    if (!image.isWhole() || !image.isActive()) {
        return false;
    }
    decltype(alarmed_) now;
    PointTree const tree(image);
    for (auto const& node : tree.nodes()) {
        for (auto const pos : tree.valuesOf(node)) {
            auto const& value = image.region().values[pos];
            auto const point = image.region().points[node.pos].guid;
            if (classOf(value.state) == StateClass::Alarm && selectsValue(patterns_, point, value.key)) {
                now.emplace(point, value.key);
            }
        }
    }
    bool const isNew = !std::includes(alarmed_.begin(), alarmed_.end(), now.begin(), now.end());
    alarmed_ = std::move(now);
    return isNew;
}

} // namespace qel::inspect

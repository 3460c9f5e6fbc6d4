// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/StructureFingerprint.h"

namespace qel::inspect {

StructureFingerprint::StructureFingerprint(Image const& image, PointTree const& tree) {
    numbers_.reserve(tree.nodes().size() * 5 + tree.values().size() * 2);
    auto const& region = image.region();
    for (auto const& node : tree.nodes()) {
        auto const& slot = region.points[node.pos];
        numbers_.insert(numbers_.end(), {slot.guid, node.pos, node.depth, slot.type, node.valueCount});
        for (auto const pos : tree.valuesOf(node)) {
            numbers_.insert(numbers_.end(), {pos, region.values[pos].key});
        }
    }
}

} // namespace qel::inspect

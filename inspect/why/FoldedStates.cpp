// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/why/FoldedStates.h"

#include "states/StateRules.h"

#include <cstddef>
#include <cstdint>

namespace qel::inspect {

namespace {

eStatus_Bits valuesOf(Image const& image, ValuePositions const& positions) {
    shm::ValueFold values;
    for (auto const pos : positions) {
        if (!values.add(image.region().values[pos].state)) {
            break;
        }
    }
    return values.result();
}

/// Folds what siblings report: the nodes in a range of indexes that are not below another one.
eStatus_Bits siblingsOf(PointTree const& tree, std::vector<FoldedState> const& nodes, std::size_t first,
                        std::size_t end) {
    shm::ChildFold siblings;
    for (auto node = first; node < end; node = tree.nodes()[node].end) {
        siblings.add(nodes[node].reported);
    }
    return siblings.result();
}

} // namespace

FoldedStates::FoldedStates(Image const& image, PointTree const& tree) : nodes_(tree.nodes().size()) {
    // Children stand behind their parents in the tree, so they are folded first.
    for (auto index = nodes_.size(); index-- > 0;) {
        auto const& node = tree.nodes()[index];
        auto const& point = image.region().points[node.pos];
        auto& folded = nodes_[index];
        folded.own = shm::ownPart(point.state);
        folded.values = valuesOf(image, tree.valuesOf(node));
        folded.children = siblingsOf(tree, nodes_, index + 1, node.end);
        folded.state = shm::combineStates(folded.own, folded.values, folded.children);
        folded.reported = shm::reportedState(point.guid, folded.state);
    }
    global_ =
        shm::combineStates(eStatus_On, shm::ValueFold().result(), siblingsOf(tree, nodes_, 0, nodes_.size()));
}

} // namespace qel::inspect

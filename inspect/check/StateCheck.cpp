// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/StateCheck.h"

#include <cstddef>

namespace qel::inspect {

void checkStates(Image const& image, PointTree const& tree, FoldedStates const& states,
                 FindingList& findings) {
    for (std::size_t i = 0; i < tree.nodes().size(); ++i) {
        auto const pos = tree.nodes()[i].pos;
        auto const stored = image.region().points[pos].state;
        auto const folded = states.nodes()[i].state;
        if (stored != folded) {
            findings.addToPoint(FindingCode::StateNotFolded, field::pointState, pos,
                                FieldValue::state(stored), FieldValue::state(folded));
        }
    }
    if (image.root().state != states.global()) {
        findings.addToRoot(FindingCode::GlobalStateNotFolded, field::rootState,
                           FieldValue::state(image.root().state), FieldValue::state(states.global()));
    }
}

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The states that a propagation would store in an image.
#pragma once

#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"

#include "domain/eStatus_Bits.h"

#include <vector>

namespace qel::inspect {

/// The parts of a point's state and the result.
struct FoldedState {
    eStatus_Bits own;      ///< the point's own part of its stored state
    eStatus_Bits values;   ///< its values folded, -1 if none counts
    eStatus_Bits children; ///< what its children report, folded, -1 if nothing counts
    eStatus_Bits state;    ///< the three combined
    eStatus_Bits reported; ///< what it reports to its parent
};

/// The folded states of all points in a tree and the global state, by the rules that the writer uses
/// (states/StateRules.h). Does not need image and tree after construction.
///
/// Threads: thread-safe.
class FoldedStates {
public:
    /// @param tree of this image
    FoldedStates(Image const& image, PointTree const& tree);

    /// By index of the tree's nodes.
    std::vector<FoldedState> const& nodes() const { return nodes_; }

    /// The global state.
    eStatus_Bits global() const { return global_; }

private:
    std::vector<FoldedState> nodes_;
    eStatus_Bits global_;
};

} // namespace qel::inspect

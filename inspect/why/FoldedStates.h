// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The states that a propagation would give to the points of an image.
#pragma once

#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"

#include "domain/eStatus_Bits.h"

#include <vector>

namespace qel::inspect {

/// How the state of a point comes about.
struct FoldedState {
    eStatus_Bits own;      ///< the point's own part of its stored state
    eStatus_Bits values;   ///< what its values come to, -1 for nothing
    eStatus_Bits children; ///< what its children report, -1 for nothing
    eStatus_Bits state;    ///< the point's state out of the three
    eStatus_Bits reported; ///< what it counts as for its parent
};

/// States of all points in a tree and the global state, by the data plane's own rules, children before their parents.
/// Independent of the image afterwards. Threads: const operations from any thread.
class FoldedStates {
public:
    /// @param tree of this image
    FoldedStates(Image const& image, PointTree const& tree);

    /// By index of the tree's nodes.
    std::vector<FoldedState> const& nodes() const { return nodes_; }

    eStatus_Bits global() const { return global_; }

private:
    std::vector<FoldedState> nodes_;
    eStatus_Bits global_;
};

} // namespace qel::inspect

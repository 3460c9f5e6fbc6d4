/// @file
/// Holds the states of points against what their values and children make of them.
#pragma once

#include "inspect/FindingList.h"
#include "inspect/FoldedStates.h"
#include "inspect/Image.h"
#include "inspect/PointTree.h"

namespace qel::inspect {

/// Adds a note for each state of a point, and for the global one, that a propagation would change.
/// @param tree, states of this image
void checkStates(Image const& image, PointTree const& tree, FoldedStates const& states,
                 FindingList& findings);

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Holds the states of points against what their values and children make of them.
#pragma once

#include "inspect/check/FindingList.h"
#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"
#include "inspect/why/FoldedStates.h"

namespace qel::inspect {

/// Adds a note for each state of a point, and for the global one, that a propagation would change.
/// @param tree, states of this image
void checkStates(Image const& image, PointTree const& tree, FoldedStates const& states,
                 FindingList& findings);

} // namespace qel::inspect

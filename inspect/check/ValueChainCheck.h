// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Holds the chains of values and the values in them to their rules.
#pragma once

#include "inspect/check/FindingList.h"
#include "inspect/check/PointLinkCheck.h"
#include "inspect/image/Image.h"

#include <vector>

namespace qel::inspect {

/// Follows the chain of each point, once through each value, and looks at the values it meets. A chain that shares
/// values with another one is reported where it runs into values met before; the keys of the chain that has them are
/// not compared then, since it cannot be told whose they are.
/// @param points of this image; their chains are followed in this order
void checkValueChains(Image const& image, std::vector<PlacedPoint> const& points, FindingList& findings);

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Checks the sensor ids of points and the order of siblings.
#pragma once

#include "inspect/check/Finding.h"
#include "inspect/check/LinkCheck.h"
#include "inspect/image/Image.h"

#include <optional>
#include <tuple>
#include <vector>

namespace qel::inspect {

/// Where a point belongs among its siblings: number of its sensor type, then by id.
using SiblingRank = std::tuple<int, long long, long long>;

/// The rank of a point: electrical points first, then residual-current monitors, I2C sensors and socket groups. Points
/// of one type rank by id, I2C sensors by phase and circuit. However points come and go, a writer keeps this order.
/// Reentrant.
/// @return none for another sensor type, which may stand anywhere
std::optional<SiblingRank> siblingRank(long long svid);

/// Adds at most one finding for each point: its id is not that of a point, is in the wrong list of the root or is not
/// unique; or the point is out of order. Reentrant.
/// @param points of this image, siblings in their order
void checkIds(Image const& image, std::vector<PlacedPoint> const& points, FindingList& findings);

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Holds the sensor ids of points to their rules.
#pragma once

#include "inspect/check/FindingList.h"
#include "inspect/check/PointLinkCheck.h"
#include "inspect/image/Image.h"

#include <vector>

namespace qel::inspect {

/// Adds one finding at most per point: an id that is no point's id, stands in the wrong list of the root or stands
/// twice; else its place among its siblings.
/// @param points of this image, siblings in their order
void checkPointIds(Image const& image, std::vector<PlacedPoint> const& points, FindingList& findings);

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Checks a region against the rules of the layout and the writer.
#pragma once

#include "inspect/check/Finding.h"
#include "inspect/image/Image.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace qel::inspect {

/// Finds damage and inconsistencies in an image. The findings are in this order: size and root, links of points,
/// contents of points, values, states. A sound region has none. Any content is accepted; time and memory are bounded by
/// the number of slots.
///
/// - Only slots that can be reached from the root are checked. Others are free, or their point lost its parent, and may
///   hold anything.
/// - A link is sound if its target names the source as prev or, at the head of a list, the list's parent as parent.
///   Each broken link is one finding; the walk goes on with the slot that belongs there if exactly one can.
/// - The root's id and unused field are checked in an active region only. An inactive region is no damage.
/// - The order of siblings is checked between electrical points, residual-current monitors, I2C sensors and socket
///   groups. A list with a point of another type has no fixed order and is not checked. (Such types are not in use, so
///   it does not matter that a list keeps its odd order when such a point is removed.)
/// - A top-level list that lost its last point, or its only one, is not found: that point looks like a freed slot.
/// - States are compared with those that values and children lead to if the region is active and nothing is damaged.
///   Differences are notes.
/// - Times of delivery that no calendar has are damage. Times ahead of the clock are notes.
///
/// A region that was copied while it was being written may show findings that vanish; see confirmedFindings().
///
/// Reentrant.
/// @param now this machine's clock, ms since 1970 UTC; none: times are not compared with it
Findings checkRegion(Image const& image, std::optional<std::uint64_t> now = std::nullopt);

/// Finds what two copies of a region have in common, for a region that is being written. Reentrant.
/// @param secondCopy makes the second copy; called only if the first one has findings
/// @param now        as for checkRegion()
/// @return the findings of the second copy that the first one has, too
/// @throws what secondCopy throws
Findings confirmedFindings(Image const& first, std::function<Image()> const& secondCopy,
                           std::optional<std::uint64_t> now = std::nullopt);

} // namespace qel::inspect

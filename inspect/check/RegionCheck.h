// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Holds a region against everything that the layout and the writer promise.
#pragma once

#include "inspect/check/Finding.h"
#include "inspect/image/Image.h"

#include <functional>

namespace qel::inspect {

/// Everything in an image that is not as a writer leaves it; empty for a sound one. In this order: size and root,
/// links of points, contents of points, values, states.
///
/// What is checked:
/// - Slots that the root leads to. The others are free, or their point lost its parent; they hold what was left in
///   them. Links are judged by both ends: a link counts if its target names the source as prev, or the list's parent
///   as parent. A broken link is one finding, and the walk goes on with the slot that should stand there if there is
///   just one that can.
/// - The root's id and unused field only while the region is active. An inactive region is no damage.
/// - The order of siblings as far as the kinds electrical, residual-current monitor, I2C sensor and socket group go; a
///   list with any other kind in it has no order to rely on, nor has one from which such a point was removed; ids of
///   other kinds are not in use.
/// - What cannot be told from a freed slot is not found: a top-level list that lost its last point, or its only one.
/// - States against what values and children make of them, as notes, if the region is active and nothing else is
///   wrong in it.
///
/// A region that was copied while it was being written may show what is not there a moment later; see
/// confirmedFindings().
///
/// Any content is fine: time and memory are bounded by the number of slots. Any thread.
Findings checkRegion(Image const& image);

/// What is found in an image and again in a second copy, as the second one has it. For a region that is being written.
/// @param secondCopy is asked for only when the first image has findings
/// Throws what secondCopy throws.
Findings confirmedFindings(Image const& first, std::function<Image()> const& secondCopy);

} // namespace qel::inspect

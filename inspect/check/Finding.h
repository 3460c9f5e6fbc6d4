// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// One thing that a check of the region found.
#pragma once

#include "inspect/check/FieldValue.h"
#include "inspect/check/FindingCode.h"
#include "inspect/check/RegionField.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qel::inspect {

/// Names the field that is not as it should be. Plain data, independent of the image.
struct Finding {
    FindingCode code{}; ///< see kindOf() for its name, severity and explanation
    RegionField field;  ///< its place says what pos counts
    /// The slot; 0 for the root, the region and the object.
    std::uint32_t pos = 0;
    /// What it is about: pos for a point, the owner of a value; NO_POSITION for the others.
    std::uint32_t point = shm::NO_POSITION;
    FieldValue found;
    FieldValue expected;
    /// Of the field, or of the first wrong one of reserved bytes; from the region's start. 0 for the object.
    std::uint64_t offset = 0;
};

using Findings = std::vector<Finding>;

/// "region", "root", "point 3", "value 17 of point 3", "object". Any thread.
std::string placeText(Finding const& finding);

/// Whether the two are of the same code, slot and field, be the values as they may. Any thread.
bool isSamePlace(Finding const& left, Finding const& right);

/// Those of the second list that the first one has too, in their order. Any thread.
Findings findingsInBoth(Findings const& first, Findings const& second);

/// Whether it is of severity Finding. Any thread.
bool isDamage(Finding const& finding);

/// Whether one of them is of severity Finding. Any thread.
bool hasDamage(Findings const& findings);

} // namespace qel::inspect

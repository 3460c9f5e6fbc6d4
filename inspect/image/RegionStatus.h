// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What condition a region is in.
#pragma once

#include "inspect/image/Image.h"
#include "inspect/image/LiveRegion.h"

#include "domain/eStatus_Bits.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace qel::inspect {

/// In the order in which they are looked for: the first one that holds is it, Active if none other does.
enum class Condition : std::uint8_t {
    Absent,     ///< there is no object
    Unreadable, ///< it could not be opened
    Replaced,   ///< the name leads to another object by now, or to none; the content is what was left
    TooShort,   ///< not every byte of the region is there
    Inactive,   ///< the root's version says "not yet"
    Silent,     ///< active, but nothing was delivered within the time allowed
    Active,
};

/// "absent", "unreadable", "replaced", "too short", "inactive", "silent", "active". Any thread.
char const* conditionName(Condition condition);

struct RegionStatus {
    Condition condition = Condition::Absent;
    RegionSource source;
    std::uint64_t size = 0;      ///< bytes that are there
    std::uint8_t version = 0xFF; ///< the root's
    std::size_t pointsUsed = 0;  ///< of MP_COUNT: points that can be reached from the root
    std::size_t valuesUsed = 0;  ///< of MV_COUNT: values of those points
    eStatus_Bits globalState = eStatus_UndefinedValue;
    std::uint64_t newest = 0; ///< time of the newest delivery to any of them, ms since 1970 UTC; 0 for never
};

/// A pure function of its arguments. Any thread.
/// @param image  the copy; an empty one when the source could not be opened
/// @param now    ms since 1970 UTC
/// @param maxAge age up to which the newest delivery counts as current, not negative; none to never call a region
///               silent. One from the future is current; "never" is silent whatever the age.
RegionStatus regionStatus(RegionSource const& source, Image const& image, std::uint64_t now,
                          std::optional<std::chrono::milliseconds> maxAge);

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The condition of a region.
#pragma once

#include "inspect/image/Image.h"
#include "inspect/image/LiveRegion.h"

#include "domain/eStatus_Bits.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace qel::inspect {

/// The first condition that holds, in this order; Active if no other does.
enum class Condition : std::uint8_t {
    Absent,     ///< there is no object
    Unreadable, ///< it could not be opened
    Replaced,   ///< the name now leads to another object, or to none; the content is left over
    TooShort,   ///< not every byte of the region is there
    Inactive,   ///< the root's version is not that of an active region
    Silent,     ///< active, but nothing was delivered within the time allowed
    Active,
};

/// "absent", "unreadable", "replaced", "too short", "inactive", "silent", "active". Reentrant.
char const* conditionName(Condition condition);

/// How far a time of delivery may be ahead of this machine's clock: clocks differ, and a value may come between the copy
/// and the look at the clock.
constexpr std::chrono::milliseconds CLOCK_TOLERANCE{60000};

/// Whether a time is so far ahead of the clock that it tells nothing of the age. Reentrant.
/// @param at, now ms since 1970 UTC
constexpr bool isAhead(std::uint64_t at, std::uint64_t now) {
    return at > now && at - now > static_cast<std::uint64_t>(CLOCK_TOLERANCE.count());
}

/// The condition of a region and what is in it.
struct RegionStatus {
    Condition condition = Condition::Absent;
    RegionSource source;
    std::uint64_t size = 0;      ///< bytes that are there
    std::uint8_t version = 0xFF; ///< the root's
    std::size_t pointsUsed = 0;  ///< points that can be reached from the root, at most MP_COUNT
    std::size_t valuesUsed = 0;  ///< values of those points, at most MV_COUNT
    eStatus_Bits globalState = eStatus_UndefinedValue;
    std::uint64_t newest = 0; ///< time of the newest delivery to any of them, ms since 1970 UTC; 0 for never
    std::uint64_t newestKnown = 0; ///< likewise, without those ahead of the clock
    std::size_t ahead = 0;         ///< deliveries to any of them that are ahead of the clock, see isAhead()
};

/// Determines the status of a region. Reentrant.
/// @param image  the copy; an empty one if the source could not be opened
/// @param now    ms since 1970 UTC
/// @param maxAge the newest delivery counts as current up to this age, not negative; none: a region is never silent.
///               A delivery ahead of the clock does not count. A region without any delivery is silent at every age.
RegionStatus regionStatus(RegionSource const& source, Image const& image, std::uint64_t now,
                          std::optional<std::chrono::milliseconds> maxAge);

} // namespace qel::inspect

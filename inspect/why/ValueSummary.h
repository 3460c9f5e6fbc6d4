// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How many values are well, and how old they are.
#pragma once

#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"

#include "domain/eStatus_Bits.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace qel::inspect {

/// A value that was delivered long ago. Reentrant.
struct OldValue {
    long long point = 0; ///< id
    unsigned short key = 0;
    std::uint64_t at = 0; ///< ms since 1970 UTC
};

/// Values by state. Reentrant.
struct StateCounts {
    std::size_t alarm = 0;   ///< states of the class Alarm but "Lost", which have a count of their own
    std::size_t warning = 0; ///< states of the class Warning
    std::size_t lost = 0;    ///< state "Lost"

    void add(eStatus_Bits state);
};

/// Values by state and age. Each count stands for itself: a value in alarm may be stale, too.
struct ValueSummary : StateCounts {
    std::size_t never = 0;          ///< never delivered
    std::size_t stale = 0;          ///< delivered, but long before the newest value
    std::optional<OldValue> oldest; ///< the first of those that were delivered longest ago; none if none was
};

/// The age at which a value counts as stale, unless somebody wants another bound: more than two turns of a sensor that
/// delivers every other minute.
constexpr std::chrono::milliseconds STALE_AFTER{std::chrono::minutes(5)};

/// Summarises all values in a tree. Reentrant.
/// @param tree       of this image
/// @param now        ms since 1970 UTC; a value that is ahead of it is not taken for the newest one, see isAhead()
/// @param staleAfter not negative
ValueSummary valueSummary(Image const& image, PointTree const& tree, std::uint64_t now,
                          std::chrono::milliseconds staleAfter = STALE_AFTER);

/// How many values are "Lost", a state that does not get into the state of their point. Reentrant.
/// @param node index of a node in the tree of this image: only its values and those below it; NO_NODE: all
std::size_t lostValues(Image const& image, PointTree const& tree, std::uint32_t node);

} // namespace qel::inspect

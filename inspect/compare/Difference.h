// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The differences between two images.
#pragma once

#include "inspect/image/Image.h"

#include "domain/eStatus_Bits.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace qel::inspect {

/// What differs. Differences of one point or value are listed in this order.
enum class DifferenceKind : std::uint8_t {
    Active,       ///< of the region; bool
    Version,      ///< of the root, if it differs and Active does not; number
    GlobalState,  ///< state
    PointAdded,   ///< after: slot, as number
    PointRemoved, ///< before: slot, as number
    PointParent,  ///< path of the parent, "" for a top-level point
    PointSlot,    ///< number
    PointType,    ///< sub-type code, number
    PointState,   ///< state
    KeyAdded,     ///< after: the value's number, as double
    KeyRemoved,   ///< before: the value's number, as double
    ValueState,   ///< state
    ValueNumber,  ///< double
};

/// For programs and people: "active", "version", "global state", "point added", "point removed", "parent", "slot",
/// "type", "state", "value added", "value removed", "value state", "number". Reentrant.
char const* differenceName(DifferenceKind kind);

/// One side of a difference; nothing before an addition and after a removal.
using DifferenceSide = std::variant<std::monostate, bool, std::uint64_t, double, eStatus_Bits, std::string>;

/// One difference, before and after.
struct Difference {
    DifferenceKind kind;
    long long svid;                    ///< of the point; ROOT_SVID for the region
    std::string path;                  ///< of the point, see PointPath.h; "" for the region
    std::optional<unsigned short> key; ///< of the value; none for region and point
    DifferenceSide before;
    DifferenceSide after;
};

/// Compares what links from the root reach in two images. Points are matched by their ids, values by their keys; if an
/// id occurs several times, the first occurrence is matched with the first, the second with the second. Times and the
/// slots of values are not compared. Numbers are equal if their bits are. The values of an added or removed point are
/// not listed.
///
/// Reentrant.
/// @return first the differences of the region, then those of points in the order of the later tree; a removed point
///         stands behind the point that came before it in the earlier tree
std::vector<Difference> differences(Image const& before, Image const& after);

} // namespace qel::inspect

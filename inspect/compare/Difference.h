// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What has changed between two images.
#pragma once

#include "inspect/image/Image.h"

#include "domain/eStatus_Bits.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace qel::inspect {

/// In the order in which the differences of one place are told.
enum class DifferenceKind : std::uint8_t {
    Active,       ///< of the region; bool
    Version,      ///< of the root, when it says more than Active; number
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
/// "type", "state", "value added", "value removed", "value state", "number". Any thread.
char const* differenceName(DifferenceKind kind);

/// Nothing where there is no such side: before of what was added, after of what was removed.
using DifferenceSide = std::variant<std::monostate, bool, std::uint64_t, double, eStatus_Bits, std::string>;

struct Difference {
    DifferenceKind kind;
    long long svid;                    ///< of the point; ROOT_SVID for the region's own facts
    std::string path;                  ///< of the point, see PointPath.h; "" for the region's own facts
    std::optional<unsigned short> key; ///< of the value
    DifferenceSide before;
    DifferenceSide after;
};

/// Compares what can be reached in two images, matching points by their ids and values by their keys; of several
/// points or values of one id the first with the first, the second with the second. Times are not compared, nor which
/// slot holds a value. Numbers count as equal when their bits are. The values of a point that was added or removed
/// are not told one by one.
///
/// First the region's own facts, then the points in the order of the later tree; one that was removed stands behind
/// the point that came before it in the earlier tree. Empty when there is no difference. Threads: any thread.
std::vector<Difference> differences(Image const& before, Image const& after);

} // namespace qel::inspect

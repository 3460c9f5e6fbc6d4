// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Why a unit or a point is not "On".
#pragma once

#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"

#include "domain/eStatus_Bits.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qel::inspect {

/// How trouble enters a point's state: the first four at a cause itself, the others on the way up.
enum class CauseRule : std::uint8_t {
    ValueAlarm,         ///< a value's state is an alarm
    ValueWarning,       ///< a value's state is a warning
    OwnState,           ///< the point's own state is not "On"
    SwitchedOffCircuit, ///< a circuit that is "Off" reports "Alarm" to its parent
    ChildAlarm,         ///< a child reports an alarm
    ChildWarning,       ///< a child reports a warning
    ChildUpdate,        ///< a child reports that its device is updating, or failed to
};

/// For programs: "value-alarm", "value-warning", "own-state", "switched-off-circuit", "child-alarm",
/// "child-warning", "child-update". Reentrant.
char const* ruleCode(CauseRule rule);

/// For people: "alarm of a value", ..., "switched off, counts as an alarm for its parent", ... Reentrant.
char const* ruleText(CauseRule rule);

/// One level on the way from a cause up to what was asked about.
struct CauseStep {
    std::uint32_t pos;  ///< the point's slot, NO_POSITION for the root
    long long svid;     ///< ROOT_SVID for the root
    std::string path;   ///< see PointPath.h; "global" for the root
    eStatus_Bits state; ///< the level's folded state, equal to that of the image once states are propagated
    CauseRule rule;     ///< how the trouble enters this level
    bool isShown;       ///< false if something stronger determines the level's state
};

/// A value, or a point's own state, that must clear before the state asked about can be "On".
struct Cause {
    long long svid;                    ///< of the point
    std::string path;                  ///< of the point, see PointPath.h
    std::optional<unsigned short> key; ///< none: the point's own state is the cause
    std::string valueText;             ///< number with unit, see tav::ValueFormatter; "" without a key
    eStatus_Bits state; ///< of the value, or the own part of the point's: "Off" of "Off, Alarm"
    std::uint64_t at;   ///< time of delivery, ms since 1970 UTC; 0 for never
    std::optional<std::chrono::milliseconds> age; ///< now - at, negative in the future; none for never
    std::vector<CauseStep> chain;                 ///< from the point up to what was asked about; never empty
};

/// The answer: state and causes.
struct Causes {
    eStatus_Bits state;        ///< as stored in the image
    eStatus_Bits propagated;   ///< as folded; differs from `state` until deliveries are propagated
    std::vector<Cause> causes; ///< in the order of the tree: a point, its values in chain order, its children
};

/// Finds everything that keeps the global state from being "On", including causes that a stronger one hides. While one
/// of them stays, the state is not "On". When all are cleared (values to a state that is neither alarm nor warning,
/// points to "On") and the states are propagated, it is. There are none exactly if `propagated` is "On".
///
/// What a point does not report to its parent is no cause: nothing below a deactivated point counts, for example. A
/// point keeps an update (34, 35) that it took over from a child until it is delivered another state, so both points
/// are causes.
///
/// Reentrant.
/// @param tree of this image
/// @param now  ms since 1970 UTC
Causes globalCauses(Image const& image, PointTree const& tree, std::uint64_t now);

/// Finds the same for one point's state. Every own state of this point but "On" is a cause here, including "Off",
/// "Deactivated" and "On, Identify". Reentrant.
/// @param tree of this image
/// @param node index of the point's node in the tree
/// @param now  ms since 1970 UTC
Causes pointCauses(Image const& image, PointTree const& tree, std::uint32_t node, std::uint64_t now);

} // namespace qel::inspect

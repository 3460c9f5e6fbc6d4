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

/// What brings trouble into a point's state: the first four stand at a cause, the others above it.
enum class CauseRule : std::uint8_t {
    ValueAlarm,         ///< a value's state is an alarm
    ValueWarning,       ///< a value's state is a warning
    OwnState,           ///< the point itself was delivered, or kept, a state other than "On"
    SwitchedOffCircuit, ///< a circuit that shows "Off" reports "Alarm" to its parent
    ChildAlarm,         ///< what a child reports counts as an alarm
    ChildWarning,       ///< what a child reports counts as a warning
    ChildUpdate,        ///< a child reports an update of the device, going on or failed
};

/// For programs: "value-alarm", "value-warning", "own-state", "switched-off-circuit", "child-alarm",
/// "child-warning", "child-update". Any thread.
char const* ruleCode(CauseRule rule);

/// For people: "alarm of a value", ..., "switched off, counts as an alarm for its parent", ... Any thread.
char const* ruleText(CauseRule rule);

/// A level that a cause passes on its way up.
struct CauseStep {
    std::uint32_t pos;  ///< the point's slot, NO_POSITION for the root
    long long svid;     ///< ROOT_SVID for the root
    std::string path;   ///< see PointPath.h; "global" for the root
    eStatus_Bits state; ///< of the level, by the rules; that of the image once states were propagated
    CauseRule rule;     ///< how the trouble enters this level
    bool isShown; ///< false when something stronger decides the level's state and hides the trouble here
};

/// A value, or a point's own state, that must clear before the state asked about can be "On".
struct Cause {
    long long svid;                    ///< of the point
    std::string path;                  ///< of the point, see PointPath.h
    std::optional<unsigned short> key; ///< none: the point's own state is the cause
    std::string valueText;             ///< number with unit, see tav::ValueFormatter; "" without a key
    eStatus_Bits state; ///< the value's; of a point its own part, such as "Off" in "Off, Alarm"
    std::uint64_t at;   ///< when the value or state was delivered, ms since 1970 UTC; 0 for never
    std::optional<std::chrono::milliseconds>
        age;                      ///< now - at, negative for one from the future; none for never
    std::vector<CauseStep> chain; ///< from the point of the cause up to what was asked about; never empty
};

struct Causes {
    eStatus_Bits state;        ///< as it stands in the image
    eStatus_Bits propagated;   ///< by the rules; differs while deliveries wait to be propagated
    std::vector<Cause> causes; ///< in the order of the tree: a point, its values in chain order, its children
};

/// Everything that keeps the global state from being "On", not only what decides it: as long as one of the causes
/// stays, the state is not "On"; when all of them are cleared (values to a state that is neither alarm nor warning,
/// points to "On") and the states are propagated, it is. None exactly when `propagated` is "On".
///
/// What a point hides is no cause: below a deactivated one, for example, nothing counts. Of a point that keeps an
/// update it took from a child (34, 35), both are causes, for it does not let go of the state by itself.
///
/// @param tree of this image
/// @param now  ms since 1970 UTC
/// Threads: any thread.
Causes globalCauses(Image const& image, PointTree const& tree, std::uint64_t now);

/// The same of one point's state. Here every own state but "On" is a cause of the point itself, be it "Off",
/// "Deactivated" or "On, Identify".
/// @param node index into the tree's nodes
Causes pointCauses(Image const& image, PointTree const& tree, std::uint32_t node, std::uint64_t now);

} // namespace qel::inspect

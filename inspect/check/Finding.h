// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a check finds: damage, and inconsistencies that a writer may leave behind.
#pragma once

#include "inspect/check/RegionField.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qel::inspect {

/// What is wrong; explained in findingKinds.
enum class FindingCode : std::uint8_t {
    RegionTooShort,
    RegionTooLong,
    VersionUnknown,
    RootIdWrong,
    RootUnusedSet,
    ReservedChanged,
    LinkOutOfRange,
    LinkToUnusedSlot,
    HeadNotFirst,
    NextNotMirrored,
    PrevNotMirrored,
    ParentMismatch,
    PointLinkedTwice,
    ValueLinkedTwice,
    PosMismatch,
    IdHasKey,
    IdOfRoot,
    IdNotUnique,
    KindNotOfList,
    OrderBroken,
    KeyMissing,
    KeyNotUnique,
    StateOutOfRange,
    NumberNotFinite,
    ChildNotListed,
    StateNotFolded,
    GlobalStateNotFolded,
    OwnerNotExpected,
    ModeTooLoose,
    NameNotUnique,
    TimeOutOfRange,
    TimeAhead,
};

/// What a code means.
struct FindingKind {
    FindingCode code;
    std::string_view name; ///< for scripts: never changed, never used for anything else
    bool isDamage;         ///< no writer leaves this behind; otherwise a note on what a writer may leave
    std::string_view explanation; ///< one line without a full stop
};

/// All kinds, by code.
extern std::array<FindingKind, 32> const findingKinds;

/// The kind of a code. Reentrant.
FindingKind const& kindOf(FindingCode code);

/// A field that has an unexpected value. Does not need the image.
struct Finding {
    FindingCode code{};
    RegionField field;                      ///< its place says what pos counts
    std::uint32_t pos = 0;                  ///< the slot; 0 for root, region and object
    std::uint32_t point = shm::NO_POSITION; ///< pos for a point, the owner of a value, NO_POSITION for others
    FieldValue found;
    FieldValue expected;
    std::uint64_t offset = 0; ///< of the field or wrong byte, from the region's start; 0 for the object
};

/// The findings of one check.
using Findings = std::vector<Finding>;

/// "region", "root", "point 3", "value 17 of point 3", "object". Reentrant.
std::string placeText(Finding const& finding);

/// Whether a finding is damage, not a note. Reentrant.
bool isDamage(Finding const& finding);

/// Whether one of the findings is damage. Reentrant.
bool hasDamage(Findings const& findings);

/// The findings of the second list whose code, slot and field a finding of the first list has, too. Reentrant.
Findings findingsInBoth(Findings const& first, Findings const& second);

/// Collects the findings of a check. Threads: reentrant.
class FindingList {
public:
    /// Adds a finding in the root, the region as a whole or the object.
    void add(FindingCode code, RegionField const& field, FieldValue found, FieldValue expected) {
        addToSlot(code, field, 0, shm::NO_POSITION, found, expected);
    }

    /// Adds a finding in a point.
    void addToPoint(FindingCode code, RegionField const& field, std::uint32_t pos, FieldValue found,
                    FieldValue expected) {
        addToSlot(code, field, pos, pos, found, expected);
    }

    /// Adds a finding in any slot.
    /// @param pos, point see Finding
    void addToSlot(FindingCode code, RegionField const& field, std::uint32_t pos, std::uint32_t point,
                   FieldValue found, FieldValue expected) {
        findings_.push_back({code, field, pos, point, found, expected, regionOffset(field, pos)});
    }

    /// Adds a finding for the first of some reserved bytes that is not WIPE_BYTE, if there is one.
    /// @param pos, point see Finding
    template <std::size_t count>
    void checkReserved(RegionField const& field, std::uint32_t pos, std::uint32_t point,
                       std::uint8_t const (&bytes)[count]) {
        for (std::size_t i = 0; i < count; ++i) {
            if (bytes[i] != shm::WIPE_BYTE) {
                addToSlot(FindingCode::ReservedChanged, field, pos, point, FieldValue::byte(bytes[i]),
                          FieldValue::byte(shm::WIPE_BYTE));
                findings_.back().offset += i;
                return;
            }
        }
    }

    /// Adds a finding if a state is no number of eStatus_Bits.
    /// @param pos, point see Finding
    void checkState(RegionField const& field, std::uint32_t pos, std::uint32_t point, eStatus_Bits state) {
        if (state < eStatus_ExpectedValue || state > eStatus_SlaveVersionTooNew) {
            addToSlot(FindingCode::StateOutOfRange, field, pos, point, FieldValue::state(state),
                      FieldValue::words("-2 to 43"));
        }
    }

    /// The findings so far.
    Findings const& findings() const { return findings_; }

    /// Moves the findings out.
    Findings take() { return std::move(findings_); }

private:
    Findings findings_;
};

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a check of the region can find.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qel::inspect {

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
};

enum class Severity : std::uint8_t {
    Finding, ///< what the writer never leaves behind
    Note,    ///< what it may leave behind, and worth knowing
};

struct FindingKind {
    FindingCode code;
    std::string_view name; ///< stable: scripts compare it; a name is never changed and never used anew
    Severity severity;
    std::string_view explanation; ///< one line without a full stop
};

/// By code.
inline constexpr std::array<FindingKind, 30> findingKinds{{
    {FindingCode::RegionTooShort, "region-too-short", Severity::Finding,
     "the object has fewer bytes than the layout; nothing else was checked"},
    {FindingCode::RegionTooLong, "region-too-long", Severity::Finding,
     "the object has more bytes than the layout"},
    {FindingCode::VersionUnknown, "version-unknown", Severity::Finding,
     "the root's version is neither that of an active region nor that of an inactive one"},
    {FindingCode::RootIdWrong, "root-id-wrong", Severity::Finding,
     "the root of an active region does not bear the root's own sensor id"},
    {FindingCode::RootUnusedSet, "root-unused-set", Severity::Finding,
     "the root's unused field is not 0 in an active region"},
    {FindingCode::ReservedChanged, "reserved-changed", Severity::Finding,
     "a reserved byte is not 0xff, though nobody writes it"},
    {FindingCode::LinkOutOfRange, "link-out-of-range", Severity::Finding,
     "a link is neither a position of a slot nor none"},
    {FindingCode::LinkToUnusedSlot, "link-to-unused-slot", Severity::Finding,
     "a link leads to a slot that was never used"},
    {FindingCode::HeadNotFirst, "head-not-first", Severity::Finding,
     "the head of a list does not lead to the list's first point"},
    {FindingCode::NextNotMirrored, "next-not-mirrored", Severity::Finding,
     "a point's next is not the sibling that names the point as its prev"},
    {FindingCode::PrevNotMirrored, "prev-not-mirrored", Severity::Finding,
     "a point's prev is not the sibling before it"},
    {FindingCode::ParentMismatch, "parent-mismatch", Severity::Finding,
     "a point's parent is not the point in whose list it stands"},
    {FindingCode::PointLinkedTwice, "point-linked-twice", Severity::Finding,
     "a link leads to a point that is reached by another way: a shared or circular list"},
    {FindingCode::ValueLinkedTwice, "value-linked-twice", Severity::Finding,
     "a link leads to a value that is reached by another way: a shared or circular chain"},
    {FindingCode::PosMismatch, "pos-mismatch", Severity::Finding,
     "a point's pos is not the position of its slot"},
    {FindingCode::IdHasKey, "id-has-key", Severity::Finding,
     "the low 16 bits of a point's sensor id, a value's key, are not zero"},
    {FindingCode::IdOfRoot, "id-of-root", Severity::Finding,
     "a point bears the sensor id that is reserved for the root"},
    {FindingCode::IdNotUnique, "id-not-unique", Severity::Finding,
     "a point bears the sensor id of a point before it"},
    {FindingCode::KindNotOfList, "kind-not-of-list", Severity::Finding,
     "a top-level point's sensor type is not that of its list: 0 for devices, 2 for groups"},
    {FindingCode::OrderBroken, "order-broken", Severity::Finding,
     "a point stands behind a sibling that it belongs before"},
    {FindingCode::KeyMissing, "key-missing", Severity::Finding, "a value in a chain has no key"},
    {FindingCode::KeyNotUnique, "key-not-unique", Severity::Finding,
     "a value bears the key of a value before it in the same chain"},
    {FindingCode::StateOutOfRange, "state-out-of-range", Severity::Finding,
     "a state has a number without a meaning"},
    {FindingCode::NumberNotFinite, "number-not-finite", Severity::Finding,
     "a value's number is infinite or none"},
    {FindingCode::ChildNotListed, "child-not-listed", Severity::Note,
     "a point names a parent in whose list it is not; left so when a parent was removed before its children"},
    {FindingCode::StateNotFolded, "state-not-folded", Severity::Note,
     "a point's state is not what its values and children make of it; a propagation may be due"},
    {FindingCode::GlobalStateNotFolded, "global-state-not-folded", Severity::Note,
     "the global state is not what the top-level points make of it; a propagation may be due"},
    {FindingCode::OwnerNotExpected, "owner-not-expected", Severity::Finding,
     "the object belongs neither to root nor to the user that owns the hardware manager's bus name"},
    {FindingCode::ModeTooLoose, "mode-too-loose", Severity::Finding,
     "the object's group or others may write it, and so forge what it says"},
    {FindingCode::NameNotUnique, "name-not-unique", Severity::Finding,
     "the object has more names than one, so somebody else knows it by another"},
}};

namespace detail {

constexpr bool standsByCode() {
    for (std::size_t i = 0; i < findingKinds.size(); ++i) {
        if (static_cast<std::size_t>(findingKinds[i].code) != i) {
            return false;
        }
    }
    return true;
}
static_assert(standsByCode() && findingKinds.back().code == FindingCode::NameNotUnique);

} // namespace detail

/// Name, severity and explanation of a code. Any thread.
constexpr FindingKind const& kindOf(FindingCode code) {
    return findingKinds[static_cast<std::size_t>(code)];
}

} // namespace qel::inspect

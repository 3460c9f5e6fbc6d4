// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/Finding.h"

#include <algorithm>
#include <iterator>

namespace qel::inspect {

namespace {

constexpr bool damage = true;
constexpr bool note = false;

} // namespace

constexpr std::array<FindingKind, 32> findingKinds{{
    {FindingCode::RegionTooShort, "region-too-short", damage,
     "the object is shorter than the region; nothing else was checked"},
    {FindingCode::RegionTooLong, "region-too-long", damage, "the object is longer than the region"},
    {FindingCode::VersionUnknown, "version-unknown", damage,
     "the root's version is neither that of an active region nor that of an inactive one"},
    {FindingCode::RootIdWrong, "root-id-wrong", damage,
     "the root of an active region does not have the root's sensor id"},
    {FindingCode::RootUnusedSet, "root-unused-set", damage,
     "the root's unused field is not 0 in an active region"},
    {FindingCode::ReservedChanged, "reserved-changed", damage, "a reserved byte is not 0xff"},
    {FindingCode::LinkOutOfRange, "link-out-of-range", damage,
     "a link is neither the position of a slot nor none"},
    {FindingCode::LinkToUnusedSlot, "link-to-unused-slot", damage,
     "a link leads to a slot that was never used"},
    {FindingCode::HeadNotFirst, "head-not-first", damage,
     "the head of a list does not lead to the list's first point"},
    {FindingCode::NextNotMirrored, "next-not-mirrored", damage,
     "a point's next is not the sibling whose prev is the point"},
    {FindingCode::PrevNotMirrored, "prev-not-mirrored", damage,
     "a point's prev is not the sibling before it"},
    {FindingCode::ParentMismatch, "parent-mismatch", damage,
     "a point's parent is not the point that lists it as a child"},
    {FindingCode::PointLinkedTwice, "point-linked-twice", damage,
     "two links lead to the same point: a shared or circular list"},
    {FindingCode::ValueLinkedTwice, "value-linked-twice", damage,
     "two links lead to the same value: a shared or circular chain"},
    {FindingCode::PosMismatch, "pos-mismatch", damage, "a point's pos is not the position of its slot"},
    {FindingCode::IdHasKey, "id-has-key", damage,
     "a point's sensor id has a key: its low 16 bits are not zero"},
    {FindingCode::IdOfRoot, "id-of-root", damage, "a point has the sensor id of the root"},
    {FindingCode::IdNotUnique, "id-not-unique", damage, "two points have the same sensor id"},
    {FindingCode::KindNotOfList, "kind-not-of-list", damage,
     "a top-level point has the wrong sensor type for its list: 0 for devices, 2 for groups"},
    {FindingCode::OrderBroken, "order-broken", damage, "siblings stand in the wrong order"},
    {FindingCode::KeyMissing, "key-missing", damage, "a value in a chain has no key"},
    {FindingCode::KeyNotUnique, "key-not-unique", damage, "two values of a point have the same key"},
    {FindingCode::StateOutOfRange, "state-out-of-range", damage, "a state is not one of the known numbers"},
    {FindingCode::NumberNotFinite, "number-not-finite", damage, "a value is infinite or not a number"},
    {FindingCode::ChildNotListed, "child-not-listed", note,
     "a point's parent does not list it as a child; possible if the parent was removed before it"},
    {FindingCode::StateNotFolded, "state-not-folded", note,
     "a point's state is not the one that follows from its values and children; a propagation may be "
     "pending"},
    {FindingCode::GlobalStateNotFolded, "global-state-not-folded", note,
     "the global state is not the one that follows from the top-level points; a propagation may be pending"},
    {FindingCode::OwnerNotExpected, "owner-not-expected", damage,
     "the object's owner is neither root nor the hardware manager's user"},
    {FindingCode::ModeTooLoose, "mode-too-loose", damage,
     "the object's group or others may write to it and forge its content"},
    {FindingCode::NameNotUnique, "name-not-unique", damage,
     "the object has another name, a hard link, by which others may reach it"},
    {FindingCode::TimeOutOfRange, "time-out-of-range", damage, "a time of delivery is after the year 9999"},
    {FindingCode::TimeAhead, "time-ahead", note,
     "a time of delivery is ahead of this machine's clock; one of the clocks is wrong"},
}};

namespace {

constexpr bool areByCode() {
    for (std::size_t i = 0; i < findingKinds.size(); ++i) {
        if (static_cast<std::size_t>(findingKinds[i].code) != i) {
            return false;
        }
    }
    return findingKinds.back().code == FindingCode::TimeAhead;
}
static_assert(areByCode());

/// Code, slot and field as one number. The offset identifies record, slot and field; findings in the region as a whole
/// and in the object have codes of their own.
std::uint64_t keyOf(Finding const& finding) {
    constexpr unsigned int offsetBits = 32;
    static_assert(std::uint64_t{shm::REGION_SIZE} >> offsetBits == 0);
    return static_cast<std::uint64_t>(finding.code) << offsetBits | regionOffset(finding.field, finding.pos);
}

} // namespace

FindingKind const& kindOf(FindingCode code) {
    return findingKinds.at(static_cast<std::size_t>(code));
}

std::string placeText(Finding const& finding) {
    switch (finding.field.place) {
    case Place::Region:
        return "region";
    case Place::Root:
        return "root";
    case Place::Point:
        return "point " + std::to_string(finding.pos);
    case Place::Value:
        return "value " + std::to_string(finding.pos) + " of point " + std::to_string(finding.point);
    case Place::Object:
        return "object";
    }
    return {};
}

bool isDamage(Finding const& finding) {
    return kindOf(finding.code).isDamage;
}

bool hasDamage(Findings const& findings) {
    return std::any_of(findings.begin(), findings.end(), isDamage);
}

Findings findingsInBoth(Findings const& first, Findings const& second) {
    std::vector<std::uint64_t> keys(first.size());
    std::transform(first.begin(), first.end(), keys.begin(), keyOf);
    std::sort(keys.begin(), keys.end());
    Findings both;
    std::copy_if(second.begin(), second.end(), std::back_inserter(both), [&](Finding const& finding) {
        return std::binary_search(keys.begin(), keys.end(), keyOf(finding));
    });
    return both;
}

} // namespace qel::inspect

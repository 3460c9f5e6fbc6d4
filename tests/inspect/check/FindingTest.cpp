// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/Finding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

namespace qel::inspect {

namespace {

Finding findingOf(FindingCode code, RegionField const& field, std::uint32_t pos, std::uint64_t found = 1) {
    return {code, field, pos, 3, FieldValue::count(found), FieldValue::count(0), 0};
}

} // namespace

// Names are never changed: this list only grows.
TEST(FindingCodeTest, NamesAreThoseThatScriptsKnow) {
    std::vector<std::string> names;
    names.reserve(findingKinds.size());
    for (auto const& kind : findingKinds) {
        names.emplace_back(kind.name);
    }
    EXPECT_THAT(names, testing::ElementsAre(
                           "region-too-short", "region-too-long", "version-unknown", "root-id-wrong",
                           "root-unused-set", "reserved-changed", "link-out-of-range", "link-to-unused-slot",
                           "head-not-first", "next-not-mirrored", "prev-not-mirrored", "parent-mismatch",
                           "point-linked-twice", "value-linked-twice", "pos-mismatch", "id-has-key",
                           "id-of-root", "id-not-unique", "kind-not-of-list", "order-broken", "key-missing",
                           "key-not-unique", "state-out-of-range", "number-not-finite", "child-not-listed",
                           "state-not-folded", "global-state-not-folded", "owner-not-expected",
                           "mode-too-loose", "name-not-unique", "time-out-of-range", "time-ahead"));
}

TEST(FindingCodeTest, EachHasOneLineOfExplanation_AndOnlyFourAreNotes) {
    std::set<std::string_view> explanations;
    int notes = 0;
    for (auto const& kind : findingKinds) {
        EXPECT_EQ(&kind, &kindOf(kind.code));
        EXPECT_TRUE(explanations.insert(kind.explanation).second) << kind.name;
        EXPECT_GT(kind.explanation.size(), 20U);
        EXPECT_EQ(std::string_view::npos, kind.explanation.find('\n'));
        EXPECT_NE('.', kind.explanation.back());
        notes += kind.isDamage ? 0 : 1;
    }
    EXPECT_EQ(4, notes);
    EXPECT_FALSE(kindOf(FindingCode::ChildNotListed).isDamage);
    EXPECT_FALSE(kindOf(FindingCode::StateNotFolded).isDamage);
    EXPECT_FALSE(kindOf(FindingCode::GlobalStateNotFolded).isDamage);
    EXPECT_FALSE(kindOf(FindingCode::TimeAhead).isDamage);
}

TEST(FindingTest, PlaceText_NamesSlotAndOwner) {
    EXPECT_EQ("region", placeText(findingOf(FindingCode::RegionTooLong, field::size, 0)));
    EXPECT_EQ("root", placeText(findingOf(FindingCode::ReservedChanged, field::rootReserved, 0)));
    EXPECT_EQ("point 7", placeText(findingOf(FindingCode::ReservedChanged, field::pointReserved, 7)));
    EXPECT_EQ("value 17 of point 3",
              placeText(findingOf(FindingCode::ReservedChanged, field::valueReserved, 17)));
    EXPECT_EQ("object", placeText(findingOf(FindingCode::ModeTooLoose, field::mode, 0)));
}

TEST(FindingTest, InBoth_ComparesCodeSlotAndField_NotValues) {
    auto const finding = findingOf(FindingCode::LinkOutOfRange, field::next, 7);
    auto const isInBoth = [&](Finding const& other) {
        return !findingsInBoth({finding}, {other}).empty();
    };
    EXPECT_TRUE(isInBoth(findingOf(FindingCode::LinkOutOfRange, field::next, 7, 99)));
    EXPECT_FALSE(isInBoth(findingOf(FindingCode::LinkOutOfRange, field::next, 8)));
    EXPECT_FALSE(isInBoth(findingOf(FindingCode::LinkOutOfRange, field::children, 7)));
    EXPECT_FALSE(isInBoth(findingOf(FindingCode::NextNotMirrored, field::next, 7)));
    EXPECT_FALSE(isInBoth(findingOf(FindingCode::LinkOutOfRange, field::valueNext, 7)));
    EXPECT_TRUE(findingsInBoth({findingOf(FindingCode::OwnerNotExpected, field::owner, 0)},
                               {findingOf(FindingCode::ModeTooLoose, field::mode, 0)})
                    .empty());
}

TEST(FindingTest, InBoth_KeepsTheOrderAndValuesOfTheSecondList) {
    auto const a = findingOf(FindingCode::LinkOutOfRange, field::next, 7);
    auto const b = findingOf(FindingCode::PosMismatch, field::pos, 2);
    auto const c = findingOf(FindingCode::KeyMissing, field::key, 1);
    auto const both = findingsInBoth({a, b}, {c, b, findingOf(a.code, a.field, a.pos, 5)});
    ASSERT_EQ(2U, both.size());
    EXPECT_EQ(b.code, both[0].code);
    EXPECT_EQ("5", both[1].found.text());
    EXPECT_TRUE(findingsInBoth({}, {a}).empty());
    EXPECT_TRUE(findingsInBoth({a}, {}).empty());
}

TEST(FindingTest, HasDamage_NotesAreNone) {
    EXPECT_FALSE(hasDamage({}));
    EXPECT_FALSE(hasDamage({findingOf(FindingCode::StateNotFolded, field::pointState, 1)}));
    EXPECT_TRUE(hasDamage({findingOf(FindingCode::StateNotFolded, field::pointState, 1),
                           findingOf(FindingCode::KeyMissing, field::key, 1)}));
}

} // namespace qel::inspect

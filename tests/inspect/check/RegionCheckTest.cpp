// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/RegionCheck.h"

#include "format/ValueKeys.h"
#include "inspect/image/LiveRegion.h"
#include "inspect/image/PointTree.h"
#include "tests/inspect/Lengths.h"
#include "tests/inspect/SampleUnit.h"
#include "tests/writer/WriterFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace qel::inspect {

namespace {

namespace key = shm::key;
using shm::record::Region;
using test::pointId;
using test::withKeys;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> namesOf(Findings const& findings) {
    std::vector<std::string> names;
    for (auto const& finding : findings) {
        names.emplace_back(kindOf(finding.code).name);
    }
    return names;
}

Image imageOf(Region const& region) {
    return {&region, sizeof region};
}

class RegionCheckTest : public testing::Test {
protected:
    std::vector<std::string> check() const { return namesOf(checkRegion(imageOf(*region))); }

    std::unique_ptr<Region> const region = test::sampleUnit();
};

} // namespace

// size

TEST_F(RegionCheckTest, EveryPrefix_IsTooShortAndNothingElse) {
    auto const* const bytes = reinterpret_cast<unsigned char const*>(region.get());
    std::vector<std::size_t> lengths;
    for (std::size_t length = 0; length < 200; ++length) {
        lengths.push_back(length);
    }
    for (std::size_t length = 200; length < sizeof *region; length += 97) {
        lengths.push_back(length);
    }
    for (auto const length : test::sourceLengths) {
        lengths.push_back(length);
    }
    for (std::size_t length = 319990; length < sizeof *region; ++length) {
        lengths.push_back(length);
    }
    for (auto const length : lengths) {
        if (length >= sizeof *region) {
            continue;
        }
        auto const findings = checkRegion(Image(bytes, length));
        ASSERT_EQ(std::vector<std::string>{"region-too-short"}, namesOf(findings)) << length;
        EXPECT_EQ("region", placeText(findings[0]));
        EXPECT_EQ("size", findings[0].field.name);
        EXPECT_EQ(std::to_string(length), findings[0].found.text());
        EXPECT_EQ("320032", findings[0].expected.text());
    }
}

TEST_F(RegionCheckTest, BytesBehindTheRegion_AreOneFinding_AndTheRestIsChecked) {
    region->points[3].next = 5;
    std::vector<unsigned char> bytes(sizeof *region + 1);
    std::memcpy(bytes.data(), region.get(), sizeof *region);

    auto const findings = checkRegion(Image(bytes.data(), bytes.size()));

    ASSERT_THAT(namesOf(findings), ElementsAre("region-too-long", "next-not-mirrored"));
    EXPECT_EQ("320033", findings[0].found.text());
    EXPECT_EQ("320032", findings[0].expected.text());
}

TEST_F(RegionCheckTest, SourceThatCouldNotBeRead_IsTooShort) {
    EXPECT_THAT(namesOf(checkRegion(Image())), ElementsAre("region-too-short"));
}

// regions that are not active

TEST_F(RegionCheckTest, WipedRegion_HasNoFinding) {
    std::memset(static_cast<void*>(region.get()), 0xFF, sizeof *region);
    EXPECT_THAT(check(), IsEmpty());
}

TEST_F(RegionCheckTest, RegionInBuilding_HasNoFinding) {
    test::ExposedWriter writer;
    writer.addStructure(
        {{pointId(1, 0), withKeys({key::voltage})}, {pointId(1, 0, 1), withKeys({key::current})}});
    writer.updateMV(pointId(1, 0) | key::voltage, test::measured(1.0, 1, eStatus_HighAlarm));
    EXPECT_THAT(namesOf(checkRegion(LiveRegion().copy())), IsEmpty());

    writer.setActive();
    EXPECT_THAT(namesOf(checkRegion(LiveRegion().copy())),
                ElementsAre("state-not-folded", "global-state-not-folded"));

    writer.propagateStates();
    EXPECT_THAT(namesOf(checkRegion(LiveRegion().copy())), IsEmpty());
}

TEST_F(RegionCheckTest, InactiveRegion_LinksAreChecked) {
    region->root.version = 0xFF;
    region->points[3].next = 5;
    EXPECT_THAT(check(), ElementsAre("next-not-mirrored"));
}

// what the writer leaves behind

TEST_F(RegionCheckTest, ChildrenWhoseParentWentBeforeThem_AreOneNoteOnceItsSlotIsTakenAgain) {
    test::ExposedWriter writer;
    writer.setActive();
    writer.addStructure({{pointId(1, 0), {}}, {pointId(1, 0, 1), {}}, {pointId(1, 0, 2), {}}});
    test::Definitions kept;
    kept[pointId(1, 0, 1)] = {};
    kept[pointId(1, 0, 2)] = {};
    writer.removeStructure(kept);
    EXPECT_THAT(namesOf(checkRegion(LiveRegion().copy())), IsEmpty());

    for (int i = 0; i < 798; ++i) { // takes every free slot, the parent's last
        writer.addMP(pointId(2 + i / 100, 0, -1, -1, -1, i % 100), {}, test::rawNone);
    }
    auto const findings = checkRegion(LiveRegion().copy());
    ASSERT_THAT(namesOf(findings), ElementsAre("child-not-listed"));
    EXPECT_EQ("point 1", placeText(findings[0]));
    EXPECT_EQ("slot 0", findings[0].found.text());
    EXPECT_FALSE(hasDamage(findings));
}

TEST_F(RegionCheckTest, ValuesThatDroppedOutOfTheirChain_AreNoFinding) {
    test::ExposedWriter writer;
    writer.setActive();
    test::Keys keys;
    for (unsigned short key = 0; key < 8799; ++key) {
        keys[key] = 0;
    }
    writer.addMP(pointId(1, 0), keys, test::rawNone);
    writer.addMP(pointId(2, 0), {{key::voltage, 0}}, test::rawNone);
    writer.removeStructure({{pointId(2, 0), {}}});
    writer.addMP(pointId(2, 0), {{key::peakVoltage, 0}, {3, 0}}, test::rawNone);
    writer.addMP(pointId(2, 0), {{key::current, 0}}, test::rawNone);
    EXPECT_THAT(namesOf(checkRegion(LiveRegion().copy())), IsEmpty());
}

TEST_F(RegionCheckTest, FreedSlots_AreNotLookedAt) {
    auto& freed = region->points[20];
    freed.guid = region->points[0].guid | 5;
    freed.state = static_cast<eStatus_Bits>(99);
    freed.children = 20;
    freed.next = 700;
    freed.reserved[0] = 0;
    region->values[27].key = 0xFFFF;
    region->values[27].next = 27;
    region->points[799].pos = 3;
    EXPECT_THAT(check(), IsEmpty());
}

// several at once

TEST_F(RegionCheckTest, EachBrokenFieldIsFound_AlsoBehindABrokenLink) {
    region->points[3].next = test::rawNone;
    region->points[4].reserved[0] = 1;
    region->points[6].state = static_cast<eStatus_Bits>(77);
    region->values[15].key = 0xFFFF;
    region->root.devices = 17;
    EXPECT_THAT(check(), ElementsAre("head-not-first", "next-not-mirrored", "reserved-changed",
                                     "state-out-of-range", "key-missing"));
}

TEST_F(RegionCheckTest, HeadWhoseListCannotBeTold_ItsChildrenAreNotNotedToo) {
    region->points[2].children = 900;
    region->points[5].prev = test::rawNone; // now two say that they are the first
    auto const findings = checkRegion(imageOf(*region));
    ASSERT_THAT(namesOf(findings), ElementsAre("link-out-of-range"));
    EXPECT_EQ("the first point of the list, or none", findings[0].expected.text());
}

TEST_F(RegionCheckTest, ListWithAPointOfAnotherType_HasNoOrder) {
    region->points[5].guid = pointId(1, 0, 1, -1, 1, 9);
    EXPECT_THAT(check(), ElementsAre("order-broken"));
    region->points[3].guid = pointId(1, 3, 1);
    EXPECT_THAT(check(), IsEmpty());
}

TEST_F(RegionCheckTest, StatesAreNotFoldedOverADamagedTree) {
    region->points[4].state = eStatus_OnAlarm;
    region->points[5].reserved[0] = 1;
    EXPECT_THAT(check(), ElementsAre("reserved-changed"));
}

TEST_F(RegionCheckTest, SwitchedOffCircuit_CountsAsAnAlarmAbove) {
    region->points[2].state = eStatus_Off;
    auto const findings = checkRegion(imageOf(*region));
    ASSERT_THAT(namesOf(findings),
                ElementsAre("state-not-folded", "state-not-folded", "global-state-not-folded"));
    EXPECT_EQ("point 0", placeText(findings[0]));
    EXPECT_EQ("Child Alarm (23)", findings[0].expected.text());
    EXPECT_EQ("point 1", placeText(findings[1]));
    EXPECT_EQ("Child Alarm (23)", findings[2].expected.text());
}

// any content

TEST_F(RegionCheckTest, ManyBytesChangedAtRandom_EndsAndMissesNoCircle) {
    auto random = test::randomNumbers(7);
    auto const number = [&](std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
    };
    auto const good = *region;
    for (int i = 0; i < 2000; ++i) {
        *region = good;
        auto* const bytes = reinterpret_cast<unsigned char*>(region.get());
        for (auto count = 1 + number(40); count > 0; --count) {
            switch (number(4)) {
            case 0: // a link to a slot in use
                region->points[number(21)].next = static_cast<std::uint32_t>(number(21));
                break;
            case 1:
                region->points[number(21)].children = static_cast<std::uint32_t>(number(21));
                break;
            case 2:
                region->values[number(28)].next = static_cast<std::uint32_t>(number(28));
                break;
            default:
                bytes[number(2) == 0 ? number(std::size_t{21} * 48) : number(sizeof good)] =
                    static_cast<unsigned char>(random());
            }
        }
        auto const image = imageOf(*region);
        auto const findings = checkRegion(image);
        ASSERT_TRUE(hasDamage(findings) || PointTree(image).skippedLinks().empty()) << "round " << i;
        ASSERT_LT(findings.size(), 300U) << "round " << i;
    }
}

TEST_F(RegionCheckTest, NothingButRandomBytes_Ends) {
    auto random = test::randomNumbers(8);
    for (int i = 0; i < 50; ++i) {
        auto* const bytes = reinterpret_cast<unsigned char*>(region.get());
        for (std::size_t at = 0; at < sizeof *region; ++at) {
            bytes[at] = static_cast<unsigned char>(random());
        }
        for (auto& point : region->points) {
            point.next %= 1000;
            point.children %= 1000;
            point.mvs %= 9000;
        }
        for (auto& value : region->values) {
            value.next %= 9000;
        }
        region->root.devices %= 800;
        region->root.version = 32;
        EXPECT_TRUE(hasDamage(checkRegion(imageOf(*region))));
    }
}

TEST_F(RegionCheckTest, EveryPointOneBelowTheOther_EveryValueInOneChain_HasNoFinding) {
    test::ExposedWriter writer;
    auto parent = test::rawNone;
    for (int i = 0; i < 800; ++i) {
        parent = writer.addMP(pointId(i / 100, 0, i % 100), {}, parent);
    }
    test::Keys keys;
    for (unsigned short key = 0; key < 8800; ++key) {
        keys[key] = 0;
    }
    writer.addMP(pointId(7, 0, 99), keys, test::rawNone);
    writer.setActive();
    auto const image = LiveRegion().copy();
    PointTree const tree(image);
    ASSERT_EQ(800U, tree.nodes().size());
    ASSERT_EQ(8800U, tree.values().size());
    EXPECT_THAT(namesOf(checkRegion(image)), IsEmpty());
}

// confirmation

TEST_F(RegionCheckTest, Confirmed_WithoutFindings_AsksForNoSecondCopy) {
    EXPECT_THAT(confirmedFindings(imageOf(*region),
                                  []() -> Image {
                                      ADD_FAILURE();
                                      return {};
                                  }),
                IsEmpty());
}

TEST_F(RegionCheckTest, Confirmed_GivesWhatTheSecondCopyStillHas_WithItsValues) {
    region->points[3].next = 5;
    region->values[6].key = 0xFFFF;
    region->root.unused = 1;
    auto const first = imageOf(*region);
    region->values[6].key = key::current;
    region->root.unused = 2;
    region->points[8].reserved[0] = 0;

    auto const findings = confirmedFindings(first, [&] { return imageOf(*region); });

    ASSERT_THAT(namesOf(findings), ElementsAre("root-unused-set", "next-not-mirrored"));
    EXPECT_EQ("2", findings[0].found.text());
}

TEST_F(RegionCheckTest, Confirmed_IfTheSecondCopyIsSound_HasNoFinding) {
    auto const good = imageOf(*region);
    region->points[3].next = 5;
    EXPECT_THAT(confirmedFindings(imageOf(*region), [&] { return good; }), IsEmpty());
}

} // namespace qel::inspect

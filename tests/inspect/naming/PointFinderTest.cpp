// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/PointFinder.h"

#include "format/ValueKeys.h"
#include "inspect/image/LiveRegion.h"

#include "tests/support/ForgedRegion.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>

namespace qel::inspect {

namespace {

namespace key = shm::key;
using test::pointId;

template <typename Action>
std::string problemOf(Action const& action) {
    try {
        action();
    } catch (NotFoundError const& error) {
        return error.what();
    }
    return "(none)";
}

/// The unit with two inlets and a group; the second inlet has values.
class PointFinderTest : public testing::Test {
protected:
    PointFinderTest() {
        region.point(0, pointId(1, 0));
        region.point(1, pointId(1, 0, 1));
        region.point(2, pointId(1, 0, 2));
        region.point(3, pointId(1, 2, -1, -1, -1, 1));
        region.point(4, pointId(1, 0, 3)); // linked nowhere
        region.devices({0});
        region.children(0, {1, 2});
        region.groups({3});
        region.values(2, 10, {key::voltage, key::activePower, 0x03, key::activeEnergy});
        image = LiveRegion().copy();
        tree = PointTree(image);
    }

    std::uint32_t slot(std::string const& text) const { return tree.nodes().at(finder.point(text)).pos; }

    test::ForgedRegion const region;
    Image image;
    PointTree tree{image};
    PointFinder finder{image, tree};
};

} // namespace

TEST_F(PointFinderTest, FindsPointsByPathAndById) {
    EXPECT_EQ(0U, slot("unit1"));
    EXPECT_EQ(2U, slot("unit1/inlet2"));
    EXPECT_EQ(2U, slot("UNIT1/Inlet2"));
    EXPECT_EQ(3U, slot("group1"));
    EXPECT_EQ(2U, slot("0x010002ffffff0000"));
    EXPECT_EQ(2U, slot("0x010002FFFFFF0013"));
    EXPECT_EQ(2U, slot(std::to_string(pointId(1, 0, 2))));
}

TEST_F(PointFinderTest, FindsNodesByNumber) {
    EXPECT_EQ(finder.point("unit1/inlet2"), finder.node(pointId(1, 0, 2)));
    EXPECT_EQ(finder.point("unit1/inlet2"), finder.node(pointId(1, 0, 2) | key::activePower));
    EXPECT_EQ(std::nullopt, finder.node(pointId(1, 0, 3)));
}

TEST_F(PointFinderTest, HasMatch_NeedsAPointOrAValueThatIsThere) {
    EXPECT_TRUE(finder.hasMatch(ValuePattern("unit1")));
    EXPECT_TRUE(finder.hasMatch(ValuePattern("unit1/*")));
    EXPECT_FALSE(finder.hasMatch(ValuePattern("unit1/inlet3"))) << "linked nowhere";
    EXPECT_TRUE(finder.hasMatch(ValuePattern("**:voltage")));
    EXPECT_FALSE(finder.hasMatch(ValuePattern("unit1:voltage"))) << "another point has one";
    EXPECT_FALSE(finder.hasMatch(ValuePattern("**:frequency")));
}

TEST_F(PointFinderTest, NamesTheNearestPathInsteadOfAMissingPoint) {
    EXPECT_EQ("there is no point \"unit1/inlt2\"; the nearest one is unit1/inlet2",
              problemOf([&] { finder.point("unit1/inlt2"); }));
    EXPECT_EQ("there is no point \"Group2\"; the nearest one is group1",
              problemOf([&] { finder.point("Group2"); }));
    EXPECT_EQ("there is no point \"unit1/inlet3\"; the nearest one is unit1/inlet1",
              problemOf([&] { finder.point("unit1/inlet3"); }));
    EXPECT_EQ("there is no point \"\"; the nearest one is unit1", problemOf([&] { finder.point(""); }));
}

TEST_F(PointFinderTest, NamesNoPointInsteadOfAMissingId) {
    EXPECT_EQ("there is no point \"0x010003ffffff0000\"",
              problemOf([&] { finder.point("0x010003ffffff0000"); }));
    EXPECT_EQ("there is no point \"17\"", problemOf([&] { finder.point("17"); }));
}

TEST_F(PointFinderTest, SaysThatThereAreNoPointsAtAll) {
    Image const none;
    PointTree const empty(none);
    EXPECT_EQ("there is no point \"unit1\"; there are no points at all",
              problemOf([&] { PointFinder(none, empty).point("unit1"); }));
}

TEST_F(PointFinderTest, OfTwoPointsOfOneIdItFindsTheFirstInTheTree) {
    region.point(1, pointId(1, 0, 2));
    image = LiveRegion().copy();
    tree = PointTree(image);
    EXPECT_EQ(1U, slot("unit1/inlet2"));
}

TEST_F(PointFinderTest, FindsValuesByNumberAndByName) {
    auto const node = finder.point("unit1/inlet2");
    EXPECT_EQ(10U, finder.value(node, "1"));
    EXPECT_EQ(11U, finder.value(node, "19"));
    EXPECT_EQ(11U, finder.value(node, "0x13"));
    EXPECT_EQ(11U, finder.value(node, "0X0013"));
    EXPECT_EQ(11U, finder.value(node, "Active Power"));
    EXPECT_EQ(11U, finder.value(node, "active power"));
    EXPECT_EQ(11U, finder.value(node, "active-power"));
    EXPECT_EQ(12U, finder.value(node, "key_idx_0x3"));
    EXPECT_EQ(13U, finder.value(node, key::activeEnergy));
    EXPECT_EQ(std::nullopt, finder.value(node, key::activeEnergyDelta));
}

TEST_F(PointFinderTest, NamesWhatAPointHasInsteadOfAMissingValue) {
    auto const node = finder.point("unit1/inlet2");
    EXPECT_EQ("unit1/inlet2 has no value \"Volt\"; it has Voltage, Active Power, KEY_IDX_0x3, Active Energy",
              problemOf([&] { finder.value(node, "Volt"); }));
    EXPECT_EQ(
        "unit1/inlet2 has no value \"0x10013\"; it has Voltage, Active Power, KEY_IDX_0x3, Active Energy",
        problemOf([&] { finder.value(node, "0x10013"); }));
    EXPECT_EQ("unit1 has no value \"1\"; it has none",
              problemOf([&] { finder.value(finder.point("unit1"), "1"); }));
}

TEST_F(PointFinderTest, NamesTwentyValuesAtMost) {
    std::vector<std::uint16_t> keys(21);
    std::iota(keys.begin(), keys.end(), std::uint16_t{0x1000});
    region.values(0, 100, keys);
    image = LiveRegion().copy();
    tree = PointTree(image);
    auto const problem = problemOf([&] { finder.value(finder.point("unit1"), "Voltage"); });
    EXPECT_NE(std::string::npos, problem.find("KEY_IDX_0x1013, ..."));
    EXPECT_EQ(std::string::npos, problem.find("KEY_IDX_0x1014"));
}

TEST(KeyInTextTest, OnlyTheIdOfAValueCarriesOne) {
    EXPECT_EQ(key::activePower, keyInText("0x010002FFFFFF0013"));
    EXPECT_EQ(key::activePower, keyInText("19"));
    EXPECT_EQ(std::nullopt, keyInText("0x010002FFFFFF0000"));
    EXPECT_EQ(std::nullopt, keyInText("unit1/inlet2"));
    EXPECT_EQ(std::nullopt, keyInText(""));
}

} // namespace qel::inspect

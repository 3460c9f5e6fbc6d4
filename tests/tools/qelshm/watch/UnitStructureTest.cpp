// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/UnitStructure.h"

#include "format/ValueKeys.h"
#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gtest/gtest.h>

namespace qel::watch {

namespace {

using test::SmallUnit;

class UnitStructureTest : public testing::Test {
protected:
    bool update() { return sut.update(unit.image()); }

    SmallUnit unit;
    UnitStructure sut{WatchedNames({})};
};

} // namespace

TEST_F(UnitStructureTest, Points_AreNamedByPath) {
    EXPECT_TRUE(update());
    ASSERT_EQ(4U, sut.points().size());
    auto const& socket2 = sut.points()[3];
    EXPECT_EQ(test::socket2Id, socket2.svid);
    EXPECT_EQ("unit1/inlet1/socket2", socket2.path);
    EXPECT_EQ("socket2", socket2.name);
    EXPECT_EQ(1U, socket2.parent);
    EXPECT_EQ(3U, socket2.depth);
    EXPECT_EQ(unit.socket2, socket2.pos);
    EXPECT_EQ("Master", sut.points()[0].type);
    EXPECT_EQ("unit1", sut.points()[0].name);
}

TEST_F(UnitStructureTest, PathThatDoesNotContinueItsParents_IsNamedInFull) {
    unit.point(0x01010102FFFF0000, unit.inlet);
    update();
    EXPECT_EQ("unit1/sensor1.2", sut.points()[4].name);
}

TEST_F(UnitStructureTest, Values_AreInChainOrder) {
    update();
    ASSERT_EQ(5U, sut.values().size());
    auto const& socket2 = sut.points()[3];
    EXPECT_EQ(2U, socket2.valueCount);
    auto const& second = sut.values()[socket2.firstValue + 1];
    EXPECT_EQ(test::socket2Id | shm::key::voltage, second.svid);
    EXPECT_EQ(unit.socket2Voltage, second.pos);
    EXPECT_EQ(3U, second.point);
    EXPECT_EQ(test::voltage, second.key);
    EXPECT_EQ("Voltage", second.name);
}

TEST_F(UnitStructureTest, SameStructure_IsNoChange) {
    update();
    unit.deliver(unit.inletPower, 12.0, 5, eStatus_HighAlarm);
    EXPECT_FALSE(update());
}

TEST_F(UnitStructureTest, AnyDifference_IsAChange) {
    update();
    unit.value(unit.unit, 4);
    EXPECT_TRUE(update());
    unit.region().points[unit.socket2].type = 1;
    EXPECT_TRUE(update());
    unit.region().points[unit.socket2].guid = 0x010001FFFF030000;
    EXPECT_TRUE(update());
    unit.removeLastChild(unit.inlet);
    EXPECT_TRUE(update());
    EXPECT_EQ(3U, sut.points().size());
    EXPECT_FALSE(update());
}

TEST_F(UnitStructureTest, RegionThatIsNotReady_IsEmpty) {
    update();
    unit.region().root.version = 0;
    EXPECT_TRUE(update());
    EXPECT_TRUE(sut.points().empty());
    EXPECT_TRUE(sut.values().empty());
    unit.region().root.version = shm::ACTIVE_VERSION;
    EXPECT_TRUE(update());
    EXPECT_TRUE(sut.update(inspect::Image(&unit.region(), shm::REGION_SIZE - 1)));
    EXPECT_TRUE(sut.points().empty());
}

TEST_F(UnitStructureTest, Names_LeaveWatchedValuesAndThePointsAboveThem) {
    sut = UnitStructure(WatchedNames({"0x010001ffff020001"}));
    update();
    ASSERT_EQ(1U, sut.values().size());
    EXPECT_EQ(unit.socket2Voltage, sut.values()[0].pos);
    EXPECT_TRUE(sut.points()[0].isWatched);
    EXPECT_TRUE(sut.points()[1].isWatched);
    EXPECT_FALSE(sut.points()[2].isWatched);
    EXPECT_TRUE(sut.points()[3].isWatched);
    EXPECT_EQ(0U, sut.points()[1].valueCount);
}

TEST_F(UnitStructureTest, NamedPointWithoutValues_IsWatched) {
    sut = UnitStructure(WatchedNames({"unit1"}));
    update();
    EXPECT_TRUE(sut.points()[0].isWatched);
    EXPECT_FALSE(sut.points()[1].isWatched);
}

} // namespace qel::watch

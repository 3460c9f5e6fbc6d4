// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/hostile/RegionWalk.h"

#include "format/ValueKeys.h"
#include "tests/support/ForgedRegion.h"

#include <gtest/gtest.h>

namespace qel::test {

namespace {

class RegionWalkTest : public testing::Test {
protected:
    RegionWalkTest() {
        region.devices({1, 2});
        region.children(2, {3, 4});
        region.values(3, 7, {shm::key::voltage, shm::key::peakVoltage});
    }
    bool ends() const { return RegionWalk(region.raw()).ends(); }

    ForgedRegion const region;
};

TEST_F(RegionWalkTest, SoundLinks_End_AndAreFollowed) {
    RegionWalk const sut(region.raw());
    ASSERT_TRUE(sut.ends());
    Positions slots;
    for (auto const& point : sut.points()) {
        slots.push_back(point.slot);
    }
    EXPECT_EQ((Positions{1, 2, 3, 4}), slots);
    EXPECT_EQ(2U, sut.points()[2].depth);
    EXPECT_EQ((Positions{7, 8}), sut.points()[2].values);
}

TEST_F(RegionWalkTest, CirclesOfSiblingsChildrenAndValues_DoNotEnd) {
    region.raw().set<std::uint32_t>(rawPoint(4) + field::next, 3);
    EXPECT_FALSE(ends());
    region.siblings({3, 4});
    ASSERT_TRUE(ends());
    region.children(4, {2});
    EXPECT_FALSE(ends());
    region.children(4, {});
    ASSERT_TRUE(ends());
    region.raw().set<std::uint32_t>(rawValue(8) + field::valueNext, 7);
    EXPECT_FALSE(ends());
}

TEST_F(RegionWalkTest, CircleOfValuesBehindANamedSlot_DoesNotEnd) {
    region.raw().set<std::uint32_t>(rawPoint(1) + field::pos, 500);
    region.raw().set<std::uint32_t>(rawPoint(500) + field::mvs, 9);
    ASSERT_TRUE(ends());
    region.raw().set<std::uint32_t>(rawValue(9) + field::valueNext, 9);
    EXPECT_FALSE(ends());
}

TEST_F(RegionWalkTest, ListsSharedOverAndOver_CountAsEndless) {
    for (std::uint32_t pos = 10; pos < 40; ++pos) { // each point twice as often as the one before it
        region.children(pos, {pos + 1});
        region.raw().set<std::uint32_t>(rawPoint(pos) + field::next, pos + 1);
    }
    region.devices({10});
    region.raw().set<std::uint32_t>(rawPoint(10) + field::next, 11);
    EXPECT_FALSE(ends());
}

} // namespace

} // namespace qel::test

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/LinkJudge.h"

#include "tests/inspect/SampleUnit.h"

#include <gtest/gtest.h>

namespace qel::inspect {

namespace {

constexpr SiblingList devices{shm::NO_POSITION, SensorType::Electrical};
constexpr SiblingList groups{shm::NO_POSITION, SensorType::SocketGroup};

constexpr SiblingList childrenOf(std::uint32_t parent) {
    return {parent, {}};
}

/// Judges links of a sample unit in which a test changes fields.
class LinkJudgeTest : public testing::Test {
protected:
    LinkVerdict judge(RegionField const& field, std::uint32_t pos, std::uint32_t target,
                      SiblingList const& list) const {
        Image const image(region.get(), sizeof *region);
        return LinkJudge(image).judge({field, pos, target}, list);
    }

    std::unique_ptr<shm::record::Region> const region = test::sampleUnit();
};

} // namespace

TEST_F(LinkJudgeTest, EveryLinkOfAGoodRegion_IsSound) {
    EXPECT_EQ(LinkVerdict::Sound, judge(field::devices, 0, 0, devices));
    EXPECT_EQ(LinkVerdict::Sound, judge(field::groups, 0, 13, groups));
    EXPECT_EQ(LinkVerdict::Sound, judge(field::next, 0, 17, devices));
    EXPECT_EQ(LinkVerdict::Sound, judge(field::children, 2, 3, childrenOf(2)));
    EXPECT_EQ(LinkVerdict::Sound, judge(field::next, 3, 4, childrenOf(2)));
}

TEST_F(LinkJudgeTest, TargetThatAnotherLinkLeadsTo_IsBelieved) {
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::next, 3, 5, childrenOf(2)));
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::next, 5, 3, childrenOf(2)));
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::children, 2, 4, childrenOf(2)));
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::children, 2, 7, childrenOf(2)));
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::devices, 0, 13, devices));
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::groups, 0, 0, groups));
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::next, 19, 13, devices));
}

TEST_F(LinkJudgeTest, TargetThatDeniesTwice_IsBelieved) {
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::next, 9, 20, childrenOf(1)));
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::next, 9, 799, childrenOf(1)));
}

TEST_F(LinkJudgeTest, TargetThatDeniesOnceAndHasNoOtherPlace_IsWrongItself) {
    region->points[4].prev = 6;
    region->points[5].parent = 1;
    region->points[3].parent = shm::NO_POSITION;
    EXPECT_EQ(LinkVerdict::PrevWrong, judge(field::next, 3, 4, childrenOf(2)));
    EXPECT_EQ(LinkVerdict::ParentWrong, judge(field::next, 4, 5, childrenOf(2)));
    EXPECT_EQ(LinkVerdict::ParentWrong, judge(field::children, 2, 3, childrenOf(2)));
}

TEST_F(LinkJudgeTest, HasFollower_OnlyBeforeASiblingThatSaysSo) {
    Image const image(region.get(), sizeof *region);
    LinkJudge const sut(image);
    EXPECT_TRUE(sut.hasFollower(0));
    EXPECT_FALSE(sut.hasFollower(19));
    EXPECT_FALSE(sut.hasFollower(20)); // freed
    EXPECT_FALSE(sut.hasFollower(799));
}

} // namespace qel::inspect

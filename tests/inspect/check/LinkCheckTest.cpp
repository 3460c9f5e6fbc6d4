// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/LinkCheck.h"

#include "tests/inspect/SampleUnit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qel::inspect {

namespace {

constexpr SiblingList devices{shm::NO_POSITION, SensorType::Electrical};
constexpr SiblingList groups{shm::NO_POSITION, SensorType::SocketGroup};

constexpr SiblingList childrenOf(std::uint32_t parent) {
    return {parent, {}};
}

/// Links of a sample unit in which a test changes fields.
class LinkEvidenceTest : public testing::Test {
protected:
    LinkEvidence evidence() {
        image = Image(region.get(), sizeof *region);
        return LinkEvidence(image);
    }
    LinkVerdict judge(RegionField const& field, std::uint32_t pos, std::uint32_t target,
                      SiblingList const& list) {
        return evidence().judge({field, pos, target}, list);
    }
    std::optional<std::uint32_t> claimant(RegionField const& field, std::uint32_t pos,
                                          SiblingList const& list, PointSet const& reached = {}) {
        return evidence().claimant({field, pos, shm::NO_POSITION}, list, reached);
    }

    std::unique_ptr<shm::record::Region> const region = test::sampleUnit();

private:
    Image image;
};

} // namespace

TEST_F(LinkEvidenceTest, Judge_EveryLinkOfAGoodRegion_IsSound) {
    EXPECT_EQ(LinkVerdict::Sound, judge(field::devices, 0, 0, devices));
    EXPECT_EQ(LinkVerdict::Sound, judge(field::groups, 0, 13, groups));
    EXPECT_EQ(LinkVerdict::Sound, judge(field::next, 0, 17, devices));
    EXPECT_EQ(LinkVerdict::Sound, judge(field::children, 2, 3, childrenOf(2)));
    EXPECT_EQ(LinkVerdict::Sound, judge(field::next, 3, 4, childrenOf(2)));
}

TEST_F(LinkEvidenceTest, Judge_TargetThatAnotherLinkLeadsTo_IsBelieved) {
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::next, 3, 5, childrenOf(2)));
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::next, 5, 3, childrenOf(2)));
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::children, 2, 4, childrenOf(2)));
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::children, 2, 7, childrenOf(2)));
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::devices, 0, 13, devices));
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::groups, 0, 0, groups));
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::next, 19, 13, devices));
}

TEST_F(LinkEvidenceTest, Judge_TargetThatDeniesTwice_IsBelieved) {
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::next, 9, 20, childrenOf(1)));
    EXPECT_EQ(LinkVerdict::LinkWrong, judge(field::next, 9, 799, childrenOf(1)));
}

TEST_F(LinkEvidenceTest, Judge_TargetThatDeniesOnceAndHasNoOtherPlace_IsWrongItself) {
    region->points[4].prev = 6;
    region->points[5].parent = 1;
    region->points[3].parent = shm::NO_POSITION;
    EXPECT_EQ(LinkVerdict::PrevWrong, judge(field::next, 3, 4, childrenOf(2)));
    EXPECT_EQ(LinkVerdict::ParentWrong, judge(field::next, 4, 5, childrenOf(2)));
    EXPECT_EQ(LinkVerdict::ParentWrong, judge(field::children, 2, 3, childrenOf(2)));
}

TEST_F(LinkEvidenceTest, HasFollower_OnlyBeforeASiblingThatSaysSo) {
    auto const sut = evidence();
    EXPECT_TRUE(sut.hasFollower(0));
    EXPECT_FALSE(sut.hasFollower(19));
    EXPECT_FALSE(sut.hasFollower(20)); // freed
    EXPECT_FALSE(sut.hasFollower(799));
}

TEST_F(LinkEvidenceTest, Claimant_ASlotThatNamesThePlaceByPrevAndParent_IsItsClaimant) {
    EXPECT_EQ(4U, claimant(field::next, 3, childrenOf(2)));
    EXPECT_EQ(3U, claimant(field::children, 2, childrenOf(2)));
    EXPECT_EQ(17U, claimant(field::next, 0, devices));
    EXPECT_EQ(0U, claimant(field::devices, 0, devices));
}

TEST_F(LinkEvidenceTest, Claimant_WithoutOne_ThereIsNone) {
    EXPECT_EQ(shm::NO_POSITION, claimant(field::next, 6, childrenOf(2))); // the freed slot has no parent
    EXPECT_EQ(shm::NO_POSITION, claimant(field::children, 3, childrenOf(3)));
    EXPECT_EQ(shm::NO_POSITION, claimant(field::next, 3, childrenOf(1)));
}

TEST_F(LinkEvidenceTest, Claimant_ReachedSlots_AndThoseWithAnotherPos_DoNotCount) {
    PointSet reached;
    reached.set(4);
    EXPECT_EQ(shm::NO_POSITION, claimant(field::next, 3, childrenOf(2), reached));
    region->points[4].pos = 5;
    EXPECT_EQ(shm::NO_POSITION, claimant(field::next, 3, childrenOf(2)));
}

TEST_F(LinkEvidenceTest, Claimant_OfTwo_IsUncertain) {
    region->points[6].prev = 3;
    EXPECT_EQ(std::nullopt, claimant(field::next, 3, childrenOf(2)));
}

TEST_F(LinkEvidenceTest, Claimant_TopLevelPointThatMayBeFreed_IsUncertain) {
    EXPECT_EQ(std::nullopt, claimant(field::next, 17, devices)); // 19 is the last one
    PointSet reached;
    reached.set(0);
    EXPECT_EQ(std::nullopt, claimant(field::devices, 0, devices, reached));
}

TEST_F(LinkEvidenceTest, FirstChildren_AscendBySlot) {
    region->points[5].prev = shm::NO_POSITION;
    auto const sut = evidence();
    EXPECT_THAT(sut.firstChildren(2), testing::ElementsAre(3, 5));
    EXPECT_THAT(sut.firstChildren(3), testing::IsEmpty());
}

} // namespace qel::inspect

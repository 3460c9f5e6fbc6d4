// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/LinkClaims.h"

#include "tests/inspect/SampleUnit.h"

#include <gtest/gtest.h>

namespace qel::inspect {

namespace {

constexpr SiblingList devices{shm::NO_POSITION, SensorType::Electrical};

constexpr SiblingList childrenOf(std::uint32_t parent) {
    return {parent, {}};
}

class LinkClaimsTest : public testing::Test {
protected:
    std::optional<std::uint32_t> claimant(RegionField const& field, std::uint32_t pos,
                                          SiblingList const& list, PointSet const& reached = {}) const {
        Image const image(region.get(), sizeof *region);
        return LinkClaims(image).claimant({field, pos, shm::NO_POSITION}, list, reached);
    }

    std::unique_ptr<shm::record::Region> const region = test::sampleUnit();
};

} // namespace

TEST_F(LinkClaimsTest, ASlotThatNamesThePlaceByPrevAndParent_IsItsClaimant) {
    EXPECT_EQ(4U, claimant(field::next, 3, childrenOf(2)));
    EXPECT_EQ(3U, claimant(field::children, 2, childrenOf(2)));
    EXPECT_EQ(17U, claimant(field::next, 0, devices));
    EXPECT_EQ(0U, claimant(field::devices, 0, devices));
}

TEST_F(LinkClaimsTest, WithoutOne_ThereIsNone) {
    EXPECT_EQ(shm::NO_POSITION, claimant(field::next, 6, childrenOf(2))); // the freed slot has no parent
    EXPECT_EQ(shm::NO_POSITION, claimant(field::children, 3, childrenOf(3)));
    EXPECT_EQ(shm::NO_POSITION, claimant(field::next, 3, childrenOf(1)));
}

TEST_F(LinkClaimsTest, ReachedSlots_AndThoseWithAnotherPos_DoNotCount) {
    PointSet reached;
    reached.set(4);
    EXPECT_EQ(shm::NO_POSITION, claimant(field::next, 3, childrenOf(2), reached));
    region->points[4].pos = 5;
    EXPECT_EQ(shm::NO_POSITION, claimant(field::next, 3, childrenOf(2)));
}

TEST_F(LinkClaimsTest, TwoOfThem_CannotBeTold) {
    region->points[6].prev = 3;
    EXPECT_EQ(std::nullopt, claimant(field::next, 3, childrenOf(2)));
}

TEST_F(LinkClaimsTest, TopLevelPointThatMayBeFreed_CannotBeTold) {
    EXPECT_EQ(std::nullopt, claimant(field::next, 17, devices)); // 19 is the last one
    PointSet reached;
    reached.set(0);
    EXPECT_EQ(std::nullopt, claimant(field::devices, 0, devices, reached));
}

TEST_F(LinkClaimsTest, ChildClaims_AscendBySlot) {
    region->points[5].prev = shm::NO_POSITION;
    Image const image(region.get(), sizeof *region);
    LinkClaims const sut(image);
    EXPECT_EQ(3U, sut.firstChildClaim(2));
    EXPECT_EQ(5U, sut.nextClaim(3));
    EXPECT_EQ(shm::NO_POSITION, sut.nextClaim(5));
    EXPECT_EQ(shm::NO_POSITION, sut.firstChildClaim(3));
}

} // namespace qel::inspect

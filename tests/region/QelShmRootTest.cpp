// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/QelShmRoot.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <type_traits>

namespace {

using shm::QelShmRoot;

class QelShmRootTest : public ::testing::Test {
protected:
    QelShmRootTest() { std::memset(region.get(), 0xFF, sizeof *region); }

    void chain(unsigned int first, unsigned int last) const {
        for (auto pos = first; pos < last; ++pos) {
            region->points[pos].next = pos + 1;
        }
    }

    std::unique_ptr<shm::record::Region> region = std::make_unique<shm::record::Region>();
    QelShmRoot sut{region.get()};
};

TEST_F(QelShmRootTest, IsOnePointerThatCopiesFreely) {
    static_assert(sizeof(QelShmRoot) == sizeof(void*));
    static_assert(std::is_trivially_copyable_v<QelShmRoot>);
    static_assert(!std::is_convertible_v<QelShmRoot, bool>);
    static_assert(std::is_same_v<decltype(*QelShmRoot()), shm::record::QelShmRoot const&>);
    static_assert(std::is_same_v<decltype(QelShmRoot().cnt(0)), unsigned int>);
    static_assert(std::is_same_v<decltype(QelShmRoot().dvcCnt()), unsigned int>);
    static_assert(std::is_same_v<decltype(QelShmRoot().grpCnt()), unsigned int>);
}

TEST_F(QelShmRootTest, Null_IsFalseAndCountsNothing) {
    for (auto const& null : {QelShmRoot(), QelShmRoot(nullptr)}) {
        EXPECT_FALSE(null);
        EXPECT_EQ(null.dvcCnt(), 0U);
        EXPECT_EQ(null.grpCnt(), 0U);
        EXPECT_EQ(null.cnt(0), 0U);
    }
}

TEST_F(QelShmRootTest, GivesTheRootRecordOfTheRegion) {
    region->root.version = 32;
    EXPECT_TRUE(sut);
    EXPECT_EQ(sut->version, 32);
    EXPECT_EQ(&*sut, &region->root);
}

TEST_F(QelShmRootTest, WipedRegion_HasNoDevicesAndNoGroups) {
    EXPECT_EQ(sut->version, 0xFF);
    EXPECT_EQ(sut->devices, 0xFFFFFFFFU);
    EXPECT_EQ(sut->groups, 0xFFFFFFFFU);
    EXPECT_EQ(sut.dvcCnt(), 0U);
    EXPECT_EQ(sut.grpCnt(), 0U);
}

TEST_F(QelShmRootTest, Cnt_PointWithoutNextIsOne) {
    EXPECT_EQ(sut.cnt(0), 1U);
    EXPECT_EQ(sut.cnt(799), 1U);
}

TEST_F(QelShmRootTest, Cnt_PositionThatIsNoneIsZero) {
    EXPECT_EQ(sut.cnt(800), 0U);
    EXPECT_EQ(sut.cnt(8799), 0U);
    EXPECT_EQ(sut.cnt(0x7FFFFFFF), 0U);
    EXPECT_EQ(sut.cnt(0xFFFFFFFF), 0U);
}

TEST_F(QelShmRootTest, Cnt_FollowsTheChainInAnyOrder) {
    region->points[5].next = 799;
    region->points[799].next = 0;
    EXPECT_EQ(sut.cnt(5), 3U);
    EXPECT_EQ(sut.cnt(799), 2U);
    EXPECT_EQ(sut.cnt(0), 1U);
}

TEST_F(QelShmRootTest, Cnt_EveryLinkOutOfRangeEndsTheChain) {
    for (unsigned int const next : {800U, 801U, 8800U, 0x80000000U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        region->points[3].next = next;
        EXPECT_EQ(sut.cnt(3), 1U) << next;
    }
}

TEST_F(QelShmRootTest, Cnt_AllPointsInOneChain) {
    chain(0, 799);
    EXPECT_EQ(sut.cnt(0), 800U);
    EXPECT_EQ(sut.cnt(1), 799U);
}

TEST_F(QelShmRootTest, DvcCntAndGrpCnt_CountTheirOwnList) {
    chain(10, 14);
    chain(700, 701);
    region->root.devices = 10;
    region->root.groups = 700;
    EXPECT_EQ(sut.dvcCnt(), 5U);
    EXPECT_EQ(sut.grpCnt(), 2U);
    region->root.devices = 800;
    EXPECT_EQ(sut.dvcCnt(), 0U);
    EXPECT_EQ(sut.grpCnt(), 2U);
}

} // namespace

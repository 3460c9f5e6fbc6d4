// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/MPntPosVisitor.h"

#include "reader/IQelVisitorResult.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

class MPntPosVisitorTest : public testing::Test {
protected:
    void reach(long long svid, std::uint32_t pos, unsigned int depth) {
        shm::QelShmMP point{};
        point.guid = svid;
        point.pos = pos;
        sut.onMPnt(shm::QelShmMPnt(&point), depth, result);
    }

    shm::PositionIndex index;
    shm::MPntPosVisitor sut{index};
    std::shared_ptr<shm::IQelVisitorResult> result;
};

TEST_F(MPntPosVisitorTest, OnMPnt_NotesPositionBySvid) {
    reach(0x0100000000000000, 3, 1);
    reach(-1, 799, 7);
    EXPECT_EQ(index, (shm::PositionIndex{{0x0100000000000000, 3}, {-1, 799}}));
}

TEST_F(MPntPosVisitorTest, OnMPnt_SvidKnownAlready_KeepsFirst) {
    reach(5, 1, 1);
    reach(5, 2, 1);
    EXPECT_EQ(index, (shm::PositionIndex{{5, 1}}));
}

TEST_F(MPntPosVisitorTest, OnMPnt_PositionOutOfRange_IsNotedAsItIs) {
    reach(5, 0xFFFFFFFF, 1);
    EXPECT_EQ(index, (shm::PositionIndex{{5, 0xFFFFFFFF}}));
}

TEST_F(MPntPosVisitorTest, OnMPnt_LeavesTheFoundFlagUnset) {
    reach(5, 1, 1);
    EXPECT_FALSE(sut.mvFound());
}

TEST_F(MPntPosVisitorTest, Values_AreIgnored) {
    sut.onMVal(shm::QelShmMVal(), 5, 1, result);
    EXPECT_FALSE(sut.mvFound());
    EXPECT_TRUE(index.empty());
}

} // namespace

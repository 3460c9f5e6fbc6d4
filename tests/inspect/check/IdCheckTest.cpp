// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/IdCheck.h"

#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <vector>

namespace qel::inspect {

namespace {

using test::pointId;

} // namespace

TEST(SiblingRankTest, KindsFollowEachOther_ThenIds) {
    std::vector<long long> const ordered{
        pointId(1, 0, 1),       pointId(1, 0, 2),       pointId(1, 4, 1),
        pointId(1, 4, 2),       pointId(1, 1, 9, 1, 1), pointId(1, 1, 1, 1, 2),
        pointId(1, 1, 5, 2, 0), pointId(1, 2, 1),       pointId(1, 2, 2)};
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        for (std::size_t j = 0; j < ordered.size(); ++j) {
            EXPECT_EQ(i < j, siblingRank(ordered[i]) < siblingRank(ordered[j])) << i << ' ' << j;
        }
    }
}

TEST(SiblingRankTest, SensorsOfOnePhaseAndCircuit_StandInAnyOrder) {
    EXPECT_EQ(siblingRank(pointId(1, 1, 1, 1, 1)), siblingRank(pointId(1, 1, 2, 1, 1)));
    EXPECT_LT(siblingRank(pointId(1, 1, 1, -1)), siblingRank(pointId(1, 1, 1, 0))); // an unused level is -1
}

TEST(SiblingRankTest, OtherKinds_HaveNone) {
    for (int const kind :
         {SensorType::Electrical, SensorType::I2C, SensorType::SocketGroup, SensorType::RCM}) {
        EXPECT_TRUE(siblingRank(pointId(1, kind))) << kind;
    }
    EXPECT_FALSE(siblingRank(pointId(1, 3)));
    EXPECT_FALSE(siblingRank(pointId(1, -1)));
}

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/SiblingOrder.h"

#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <vector>

namespace qel::inspect {

namespace {

using test::pointId;

} // namespace

TEST(SiblingOrder, KindsFollowEachOther_ThenIds) {
    std::vector<long long> const ordered{
        pointId(1, 0, 1),       pointId(1, 0, 2),       pointId(1, 4, 1),
        pointId(1, 4, 2),       pointId(1, 1, 9, 1, 1), pointId(1, 1, 1, 1, 2),
        pointId(1, 1, 5, 2, 0), pointId(1, 2, 1),       pointId(1, 2, 2)};
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        for (std::size_t j = 0; j < ordered.size(); ++j) {
            EXPECT_EQ(i < j, belongsBefore(ordered[i], ordered[j])) << i << ' ' << j;
        }
    }
}

TEST(SiblingOrder, SensorsOfOnePhaseAndCircuit_StandInAnyOrder) {
    EXPECT_FALSE(belongsBefore(pointId(1, 1, 1, 1, 1), pointId(1, 1, 2, 1, 1)));
    EXPECT_FALSE(belongsBefore(pointId(1, 1, 2, 1, 1), pointId(1, 1, 1, 1, 1)));
    EXPECT_TRUE(belongsBefore(pointId(1, 1, 1, -1), pointId(1, 1, 1, 0))); // an unused level is -1
}

TEST(SiblingOrder, OtherKinds_StandAnywhere) {
    EXPECT_TRUE(isOrdered(pointId(1, 0)) && isOrdered(pointId(1, 1)) && isOrdered(pointId(1, 2)) &&
                isOrdered(pointId(1, 4)));
    EXPECT_FALSE(isOrdered(pointId(1, 3)));
    EXPECT_FALSE(isOrdered(pointId(1, -1)));
    EXPECT_FALSE(belongsBefore(pointId(1, 3, 1), pointId(1, 3, 2)));
    EXPECT_FALSE(belongsBefore(pointId(1, 0, 1), pointId(1, 3, 2)));
    EXPECT_FALSE(belongsBefore(pointId(1, 3, 1), pointId(1, 2, 2)));
}

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/IdCheck.h"

#include "tests/model/ReferenceSvid.h"
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

// Of every kind beside every kind, with the deciding bytes smaller, equal and greater: where both kinds take part, the
// order is what the writer decides for a new point.
TEST(SiblingRankTest, EveryPairOfKinds_StandsAsByTheReferenceWriter) {
    std::vector<long long> ids;
    for (int kind = -1; kind <= 5; ++kind) {
        for (int level = 0; level < 3 * 3 * 3 * 3; ++level) {
            ids.push_back(
                pointId(1 + level % 3, kind, 1, level / 3 % 3 - 1, level / 9 % 3 - 1, level / 27 - 1));
        }
    }
    for (auto const left : ids) {
        for (auto const right : ids) {
            auto const rank = siblingRank(left);
            auto const other = siblingRank(right);
            bool const counts = rank && other;
            ASSERT_EQ(counts && test::reference::standsBefore(left, right), counts && *rank < *other)
                << test::hex(left) << ' ' << test::hex(right);
        }
    }
}

} // namespace qel::inspect

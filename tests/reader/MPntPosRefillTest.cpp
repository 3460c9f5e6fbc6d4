#include "reader/MPntPosRefill.h"

#include "reader/IQelVisitorResult.h"
#include "tests/support/RandomNumbers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace {

using Points = std::vector<std::pair<long long, std::uint32_t>>;

void reach(shm::MPntPosVisitor& visitor, Points const& points) {
    std::shared_ptr<shm::IQelVisitorResult> result;
    for (auto const& [svid, pos] : points) {
        shm::QelShmMP point{};
        point.guid = svid;
        point.pos = pos;
        visitor.onMPnt(shm::QelShmMPnt(&point), 1, result);
    }
}

shm::PositionIndex plainIndexOf(Points const& points) {
    shm::PositionIndex index;
    shm::MPntPosVisitor plain(index);
    reach(plain, points);
    return index;
}

TEST(MPntPosRefillTest, NewRefill_EmptiesTheIndex) {
    shm::PositionIndex index{{1, 2}, {3, 4}};
    shm::MPntPosRefill const sut(index);
    EXPECT_TRUE(index.empty());
}

TEST(MPntPosRefillTest, OnMPnt_SvidKnownAlready_KeepsFirst) {
    shm::PositionIndex index{{1, 2}, {3, 4}, {5, 6}};
    shm::MPntPosRefill sut(index);
    reach(sut, {{7, 1}, {7, 2}, {3, 9}, {7, 3}, {7, 4}});
    EXPECT_EQ((shm::PositionIndex{{7, 1}, {3, 9}}), index);
}

TEST(MPntPosRefillTest, OnMPnt_EndsTheWalkOverThePointsValues) {
    shm::PositionIndex index{{1, 2}};
    shm::MPntPosRefill sut(index);
    EXPECT_FALSE(sut.mvFound());
    reach(sut, {{1, 2}});
    EXPECT_TRUE(sut.mvFound());
}

TEST(MPntPosRefillTest, RandomPoints_GiveThePlainVisitorsIndex) {
    auto random = qel::test::randomNumbers(5);
    shm::PositionIndex index;
    for (int round = 0; round < 500; ++round) {
        Points points;
        auto const count = random() % 800;
        for (unsigned int number = 0; number < count; ++number) {
            points.emplace_back(random() % 900, static_cast<std::uint32_t>(random()));
        }
        shm::MPntPosRefill sut(index);
        reach(sut, points);
        ASSERT_EQ(plainIndexOf(points), index) << "round " << round;
    }
}

} // namespace

#include "reader/PositionTable.h"

#include "tests/support/RandomNumbers.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

constexpr std::uint32_t none = 0xFFFFFFFF;

TEST(PositionTableTest, NewTable_LetsTheIndexAnswer) {
    shm::PositionIndex index{{1, 7}};
    shm::PositionTable const sut(index);
    EXPECT_EQ(7U, sut.find(1));
    EXPECT_EQ(none, sut.find(2));
    index[2] = 8;
    EXPECT_EQ(8U, sut.find(2));
}

TEST(PositionTableTest, TakeOver_KeepsWhatTheIndexHeld) {
    shm::PositionIndex index{{1, 7}, {-1, 0xFFFFFFF0}};
    shm::PositionTable sut(index);
    sut.takeOver();
    index.clear();
    EXPECT_EQ(7U, sut.find(1));
    EXPECT_EQ(0xFFFFFFF0U, sut.find(-1)) << "out of range, as it is";
    EXPECT_EQ(none, sut.find(0));
}

TEST(PositionTableTest, Invalidate_LetsTheIndexAnswerAgain) {
    shm::PositionIndex index{{1, 7}};
    shm::PositionTable sut(index);
    sut.takeOver();
    sut.invalidate();
    index[1] = 9;
    EXPECT_EQ(9U, sut.find(1));
}

TEST(PositionTableTest, IndexOfMorePointsThanThereAreSlots_AnswersItself) {
    shm::PositionIndex index;
    for (long long svid = 0; svid < 801; ++svid) {
        index[svid] = static_cast<std::uint32_t>(svid);
    }
    shm::PositionTable sut(index);
    sut.takeOver();
    for (long long svid = 0; svid < 801; ++svid) {
        ASSERT_EQ(svid, sut.find(svid));
    }
}

TEST(PositionTableTest, RandomIndexes_AreAnsweredAlike) {
    auto random = qel::test::randomNumbers(9);
    shm::PositionIndex index;
    shm::PositionTable sut(index);
    for (int round = 0; round < 200; ++round) {
        sut.invalidate();
        index.clear();
        auto const count = random() % 801;
        while (index.size() < count) {
            index[static_cast<long long>(random() % 2000) << 32] = static_cast<std::uint32_t>(random());
        }
        sut.takeOver();
        for (long long number = 0; number < 2000; ++number) {
            auto const svid = number << 32;
            auto const known = index.find(svid);
            ASSERT_EQ(known == index.end() ? none : known->second, sut.find(svid)) << "round " << round;
        }
    }
}

} // namespace

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/PositionBySvid.h"

#include "tests/support/RandomNumbers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <vector>

namespace qel::test {

namespace {

constexpr std::uint16_t none = 0xFFFF;

using Numbers = std::map<long long, std::uint16_t>;

void expectSame(Numbers const& expected, shm::PositionBySvid const& sut, long long svid) {
    auto const known = expected.find(svid);
    ASSERT_EQ(known == expected.end() ? none : known->second, sut.find(svid)) << svid;
}

} // namespace

TEST(PositionBySvidTest, NewTable_KnowsNoPoint) {
    shm::PositionBySvid const sut;
    EXPECT_EQ(none, sut.find(0));
    EXPECT_EQ(none, sut.find(-1));
}

TEST(PositionBySvidTest, Insert_ItsPointIsFoundAndNoOther) {
    shm::PositionBySvid sut;
    sut.insert(0, 799);
    sut.insert(-1, 0);
    EXPECT_EQ(799, sut.find(0));
    EXPECT_EQ(0, sut.find(-1));
    EXPECT_EQ(none, sut.find(1));
}

TEST(PositionBySvidTest, Clear_ForgetsAll) {
    shm::PositionBySvid sut;
    sut.insert(5, 1);
    sut.clear();
    EXPECT_EQ(none, sut.find(5));
}

TEST(PositionBySvidTest, Remove_OfAnUnknownPoint_ChangesNothing) {
    shm::PositionBySvid sut;
    sut.insert(1, 0);
    sut.remove(2);
    EXPECT_EQ(0, sut.find(1));
}

TEST(PositionBySvidTest, RandomInsertsAndRemoves_AgreeWithAMap) {
    auto random = randomNumbers(7);
    shm::PositionBySvid sut;
    Numbers expected;
    // Ids that differ in few bytes, so that they crowd; full tables included.
    auto const anyId = [&] {
        return static_cast<long long>(random() % 3) << 56 | 0xFFFF'0000LL |
               static_cast<long long>(random() % 200) << 40 | static_cast<long long>(random() % 4) << 32;
    };
    std::vector<std::uint16_t> freeNumbers;
    for (std::uint16_t number = 0; number < 800; ++number) {
        freeNumbers.push_back(number);
    }
    bool wasFull = false;
    for (int step = 0; step < 20000; ++step) {
        auto const svid = anyId();
        bool const grows = step / 2000 % 2 == 0 ? random() % 8 != 0 : random() % 8 == 0;
        auto const known = expected.find(svid);
        if (grows && known == expected.end() && !freeNumbers.empty()) {
            sut.insert(svid, freeNumbers.back());
            expected[svid] = freeNumbers.back();
            freeNumbers.pop_back();
        } else if (!grows && known != expected.end()) {
            sut.remove(svid);
            freeNumbers.push_back(known->second);
            expected.erase(known);
        }
        wasFull = wasFull || freeNumbers.empty();
        expectSame(expected, sut, svid);
        expectSame(expected, sut, anyId());
    }
    EXPECT_TRUE(wasFull);
    for (auto const& point : expected) {
        expectSame(expected, sut, point.first);
    }
}

} // namespace qel::test

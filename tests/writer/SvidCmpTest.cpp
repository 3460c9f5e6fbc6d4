// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/SvidCmp.h"

#include "tests/model/ReferenceSvid.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <vector>

namespace qel::test {

namespace {

constexpr shm::SvidCmp sut;

static_assert(sut(pointId(1, 0), pointId(1, 0, 1)) && !sut(pointId(1, 0, 1), pointId(1, 0)));

// Ids whose bytes are those where an ordering easily goes wrong.
std::vector<long long> structuredIds(std::size_t count) {
    auto random = randomNumbers(1);
    std::vector<std::uint64_t> const bytes{0x00, 0x01, 0x7E, 0x7F, 0x80, 0x81, 0xFE, 0xFF, 0xFF};
    std::vector<long long> ids;
    for (std::size_t i = 0; i < count; ++i) {
        std::uint64_t bits = 0;
        for (int index = 0; index < 8; ++index) {
            bits = (bits << 8U) | bytes[random() % bytes.size()];
        }
        ids.push_back(static_cast<long long>(bits));
        // A neighbour that differs in one byte, so that later bytes decide as well.
        auto const shift = 8U * (random() % 8U);
        ids.push_back(static_cast<long long>((bits & ~(std::uint64_t{0xFF} << shift)) |
                                             (bytes[random() % bytes.size()] << shift)));
    }
    return ids;
}

} // namespace

TEST(SvidCmpTest, UnusedLevel_StandsBeforeEveryUsedOne) {
    for (int level = 0; level <= 0xFE; ++level) {
        EXPECT_TRUE(sut(pointId(1, 0, 2, -1), pointId(1, 0, 2, level))) << level;
        EXPECT_FALSE(sut(pointId(1, 0, 2, level), pointId(1, 0, 2, -1))) << level;
    }
}

TEST(SvidCmpTest, LevelBytes_AreComparedUnsigned) {
    EXPECT_TRUE(sut(pointId(0x7F, 0), pointId(0x80, 0)));
    EXPECT_TRUE(sut(pointId(1, 0, 0x7F), pointId(1, 0, 0x80)));
}

TEST(SvidCmpTest, EqualLevels_KeyDecides) {
    EXPECT_TRUE(sut(pointId(1, 0), pointId(1, 0) | 1));
    EXPECT_TRUE(sut(pointId(1, 0) | 0xFE, pointId(1, 0) | 0xFFFF));
    EXPECT_FALSE(sut(pointId(1, 0) | 5, pointId(1, 0) | 5));
}

TEST(SvidCmpTest, LowerLevels_DecideOnlyWhenHigherOnesAreEqual) {
    EXPECT_TRUE(sut(pointId(1, 0, 5, 9), pointId(1, 0, 6, -1)));
    EXPECT_TRUE(sut(pointId(1, 0, -1, 9), pointId(1, 0, 0, -1)));
}

TEST(SvidCmpTest, EachBytePair_OrdersAsByTheReference) {
    for (int index = 0; index < 8; ++index) {
        for (std::uint64_t a = 0; a <= 0xFF; ++a) {
            for (std::uint64_t b = 0; b <= 0xFF; ++b) {
                std::uint64_t const others = 0x0123FF8000FF7F55U & ~(std::uint64_t{0xFF} << (8 * index));
                auto const left = static_cast<long long>(others | (a << (8 * index)));
                auto const right = static_cast<long long>(others | (b << (8 * index)));
                ASSERT_EQ(reference::ParentsFirst()(left, right), sut(left, right))
                    << hex(left) << ", " << hex(right);
            }
        }
    }
}

TEST(SvidCmpTest, RandomAndStructuredIds_OrderAsByTheReference) {
    auto ids = structuredIds(700);
    auto random = randomNumbers(2);
    for (int i = 0; i < 300; ++i) {
        ids.push_back(static_cast<long long>((std::uint64_t{random()} << 32U) | random()));
    }
    for (auto const left : ids) {
        for (auto const right : ids) {
            ASSERT_EQ(reference::ParentsFirst()(left, right), sut(left, right))
                << hex(left) << ", " << hex(right);
        }
    }
}

TEST(SvidCmpTest, StrictWeakOrdering_Holds) {
    auto const ids = structuredIds(60);
    for (auto const a : ids) {
        ASSERT_FALSE(sut(a, a));
        for (auto const b : ids) {
            ASSERT_FALSE(sut(a, b) && sut(b, a));
            ASSERT_EQ(a == b, !sut(a, b) && !sut(b, a)); // different ids are never equivalent
            for (auto const c : ids) {
                ASSERT_TRUE(!(sut(a, b) && sut(b, c)) || sut(a, c));
            }
        }
    }
}

TEST(SvidCmpTest, MapOfATree_VisitsParentsBeforeTheirChildren) {
    std::map<long long, int, shm::SvidCmp> tree;
    for (auto const svid : {pointId(1, 0, 1, 1, 1, 1), pointId(1, 0, 1, 1, 1), pointId(1, 0, 1, 1),
                            pointId(1, 0, 1), pointId(1, 0), pointId(1, 0, 1, 1, 0)}) {
        tree[svid] = 0;
    }

    std::vector<long long> order;
    std::transform(tree.begin(), tree.end(), std::back_inserter(order),
                   [](auto const& entry) { return entry.first; });

    EXPECT_EQ(
        (std::vector<long long>{pointId(1, 0), pointId(1, 0, 1), pointId(1, 0, 1, 1), pointId(1, 0, 1, 1, 0),
                                pointId(1, 0, 1, 1, 1), pointId(1, 0, 1, 1, 1, 1)}),
        order);
}

} // namespace qel::test

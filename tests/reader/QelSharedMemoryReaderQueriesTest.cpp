// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelSharedMemoryReader.h"

#include "format/ValueKeys.h"
#include "tests/reader/MappedReader.h"
#include "tests/support/ForgedRegion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

namespace key = shm::key;
using qel::test::ForgedRegion;
using qel::test::MappedReader;
using testing::ElementsAre;
using testing::IsEmpty;

/// Sensor id of an electrical point.
constexpr long long svid(int number) {
    return 0x0100000000000000 + number * 0x10000LL;
}

class QelSharedMemoryReaderQueriesTest : public testing::Test {
protected:
    std::vector<std::uint32_t> points(unsigned int first, int type) const {
        std::vector<std::uint32_t> positions;
        for (auto const& point : sut.mps(first, static_cast<SensorType::SensorType>(type))) {
            positions.push_back(point->pos);
        }
        return positions;
    }
    std::vector<unsigned int> keys(unsigned int first) const {
        std::vector<unsigned int> found;
        for (auto const& value : sut.mvs(first)) {
            found.push_back(value->key);
        }
        return found;
    }

    ForgedRegion region;
    MappedReader sut;
};

TEST_F(QelSharedMemoryReaderQueriesTest, Mps_EverySensorType_GivesThePointsOfThatTypeInChainOrder) {
    // Each of the 256 types twice, far apart; the low bits of the position are the type.
    std::vector<std::uint32_t> chain(512);
    std::iota(chain.begin(), chain.end(), 0);
    std::reverse(chain.begin(), chain.end());
    for (auto const pos : chain) {
        region.point(pos, static_cast<long long>((pos & 0xFFULL) << 48U | 0xA500A5A5A5A50000));
    }
    auto const first = region.siblings(chain);
    for (int type = -128; type <= 127; ++type) {
        if (type == -2) {
            EXPECT_EQ(points(first, type), chain);
        } else {
            auto const byte = static_cast<std::uint32_t>(type) & 0xFFU;
            EXPECT_THAT(points(first, type), ElementsAre(256 + byte, byte)) << type;
        }
    }
}

TEST_F(QelSharedMemoryReaderQueriesTest, Mps_StartsAtTheGivenPosition) {
    for (std::uint32_t const pos : {7U, 799U, 0U}) {
        region.point(pos, svid(1));
    }
    region.siblings({7, 799, 0});
    EXPECT_THAT(points(7, -2), ElementsAre(7, 799, 0));
    EXPECT_THAT(points(799, -2), ElementsAre(799, 0));
    EXPECT_THAT(points(0, -2), ElementsAre(0));
}

TEST_F(QelSharedMemoryReaderQueriesTest, Mps_OutOfRange_EndsTheChain) {
    region.point(1, svid(1));
    for (unsigned int const none : {800U, 801U, 0x80000000U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        EXPECT_THAT(points(none, -2), IsEmpty()) << none;
        EXPECT_THAT(points(none, 0), IsEmpty()) << none;
        region.raw().set<std::uint32_t>(qel::test::rawPoint(1) + qel::test::field::next, none);
        EXPECT_THAT(points(1, -2), ElementsAre(1)) << none;
    }
}

TEST_F(QelSharedMemoryReaderQueriesTest, Mps_HandlesShowTheSlotsInPlace) {
    region.point(3, svid(1));
    auto const found = sut.mps(3, SensorType::Any);
    region.point(3, svid(2));
    EXPECT_EQ(found.front()->guid, svid(2));
}

TEST_F(QelSharedMemoryReaderQueriesTest, Mvs_GivesTheChainInOrder) {
    region.values(0, 8796, {key::neutralCurrent, key::voltage, 0xFFFF, key::voltage});
    EXPECT_THAT(keys(8796), ElementsAre(key::neutralCurrent, key::voltage, 0xFFFF, key::voltage));
    EXPECT_THAT(keys(8799), ElementsAre(key::voltage));
}

TEST_F(QelSharedMemoryReaderQueriesTest, Mvs_OutOfRange_EndsTheChain) {
    for (unsigned int const none : {8800U, 8801U, 0x80000000U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        EXPECT_THAT(keys(none), IsEmpty()) << none;
        region.values(0, 5, {key::current});
        region.raw().set<std::uint32_t>(qel::test::rawValue(5) + qel::test::field::valueNext, none);
        EXPECT_THAT(keys(5), ElementsAre(key::current)) << none;
    }
}

TEST(QelSharedMemoryReaderQueriesWithoutRegionTest, AreEmpty) {
    shm::QelSharedMemoryReader const sut(0, false);
    EXPECT_THAT(sut.mps(0, SensorType::Any), IsEmpty());
    EXPECT_TRUE(sut.mvs(0).empty());
}

} // namespace

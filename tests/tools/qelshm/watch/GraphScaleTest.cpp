// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/GraphScale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qel::watch {

TEST(GraphScaleTest, NarrowRange_IsWidenedToATenthOfItsNumbers) {
    auto const sut = scaleAround(2600.0, 2612.0);
    EXPECT_EQ(2400.0, sut.low);
    EXPECT_EQ(2800.0, sut.high);
    auto const mains = scaleAround(229.0, 231.0);
    EXPECT_EQ(210.0, mains.low);
    EXPECT_EQ(250.0, mains.high);
}

TEST(GraphScaleTest, RangeNearZero_IncludesIt) {
    auto const sut = scaleAround(3.0, 72.0);
    EXPECT_EQ(0.0, sut.low);
    EXPECT_EQ(80.0, sut.high);
    auto const below = scaleAround(-5.0, -2.5);
    EXPECT_EQ(-6.0, below.low);
    EXPECT_EQ(0.0, below.high);
}

TEST(GraphScaleTest, RangeAcrossZero_HasRoundLimits) {
    auto const sut = scaleAround(-7.0, 12.0);
    EXPECT_EQ(-10.0, sut.low);
    EXPECT_EQ(15.0, sut.high);
}

TEST(GraphScaleTest, NothingButZero_HasASpan) {
    auto const sut = scaleAround(0.0, 0.0);
    EXPECT_EQ(0.0, sut.low);
    EXPECT_EQ(1.0, sut.high);
}

TEST(GraphScaleTest, EveryRangeOfFloats_LiesWithinItsScale) {
    constexpr double most = std::numeric_limits<float>::max();
    constexpr double least = std::numeric_limits<float>::denorm_min();
    for (double const low : {-most, -1e9, -3.0, -least, 0.0, least, 0.007, 1.0, 49.99, 1e20, most}) {
        for (double const high : {-most, -1e9, -3.0, -least, 0.0, least, 0.007, 1.0, 49.99, 1e20, most}) {
            if (low <= high) {
                auto const sut = scaleAround(low, high);
                EXPECT_TRUE(std::isfinite(sut.low) && std::isfinite(sut.high)) << low << ' ' << high;
                auto const slack = (sut.high - sut.low) * 1e-6;
                EXPECT_LE(sut.low, low + slack);
                EXPECT_GE(sut.high, high - slack);
                EXPECT_LT(sut.low, sut.high);
                EXPECT_GE(sut.partOf(low), 0.0);
                EXPECT_LE(sut.partOf(high), 1.0);
            }
        }
    }
}

} // namespace qel::watch

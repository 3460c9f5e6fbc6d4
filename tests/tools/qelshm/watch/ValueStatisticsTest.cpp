// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/ValueStatistics.h"

#include <gtest/gtest.h>

#include <limits>

namespace qel::watch {

TEST(ValueStatisticsTest, NoNumber_IsEmpty) {
    ValueStatistics sut(1000);
    sut.addNumber(std::numeric_limits<double>::quiet_NaN());
    sut.addNumber(std::numeric_limits<double>::infinity());
    EXPECT_TRUE(sut.isEmpty());
    EXPECT_EQ(0.0, sut.rate(1000));
    EXPECT_EQ(0.0, sut.rate(2000));
}

TEST(ValueStatisticsTest, Numbers_GiveLeastGreatestAndMean) {
    ValueStatistics sut(0);
    for (double const number : {-3.0, 5.0, 1.0}) {
        sut.addNumber(number);
    }
    EXPECT_EQ(-3.0, sut.minimum());
    EXPECT_EQ(5.0, sut.maximum());
    EXPECT_DOUBLE_EQ(1.0, sut.mean());
}

TEST(ValueStatisticsTest, HugeNumbers_HaveAMean) {
    ValueStatistics sut(0);
    auto const huge = std::numeric_limits<double>::max();
    sut.addNumber(huge);
    sut.addNumber(huge);
    EXPECT_DOUBLE_EQ(huge, sut.mean());
}

TEST(ValueStatisticsTest, Rate_IsDeliveriesASecond) {
    ValueStatistics sut(1000);
    sut.addDelivery();
    sut.addDelivery();
    EXPECT_DOUBLE_EQ(0.5, sut.rate(5000));
}

} // namespace qel::watch

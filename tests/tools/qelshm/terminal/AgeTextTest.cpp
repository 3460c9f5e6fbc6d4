// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/AgeText.h"

#include <gtest/gtest.h>

#include <limits>

namespace qel::tools {

namespace {

constexpr std::uint64_t now = 1700000000000;

std::string textOfAge(std::uint64_t age) {
    return ageText(now - age, now);
}

} // namespace

TEST(AgeTextTest, AgeOf_IsTheTimeUntilNow) {
    EXPECT_EQ(0, ageOf(now, now));
    EXPECT_EQ(1500, ageOf(now - 1500, now));
    EXPECT_EQ(-1500, ageOf(now + 1500, now));
}

TEST(AgeTextTest, AgeOfNever_IsNothing) {
    EXPECT_EQ(std::nullopt, ageOf(0, now));
    EXPECT_EQ("-", ageText(0, now));
}

TEST(AgeTextTest, AgeOfNoCalendarTime_IsNothing) {
    constexpr auto last = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(std::nullopt, ageOf(last, now));
    EXPECT_EQ(std::nullopt, ageOf(now, last));
    EXPECT_EQ("-", ageText(last, now));
}

TEST(AgeTextTest, AgeText_HasItsTwoLargestUnits) {
    EXPECT_EQ("0.0 s", textOfAge(0));
    EXPECT_EQ("0.3 s", textOfAge(399));
    EXPECT_EQ("9.9 s", textOfAge(9999));
    EXPECT_EQ("10 s", textOfAge(10000));
    EXPECT_EQ("59 s", textOfAge(59999));
    EXPECT_EQ("1 min 0 s", textOfAge(60000));
    EXPECT_EQ("59 min 59 s", textOfAge(3599999));
    EXPECT_EQ("1 h 0 min", textOfAge(3600000));
    EXPECT_EQ("23 h 59 min", textOfAge(86399999));
    EXPECT_EQ("1 d 0 h", textOfAge(86400000));
    EXPECT_EQ("400 d 5 h", textOfAge(400ULL * 86400000 + 5ULL * 3600000));
}

TEST(AgeTextTest, AgeTextOfTheFuture_SaysSo) {
    EXPECT_EQ("in the future", ageText(now + 1, now));
}

TEST(AgeTextTest, ShortDurationText_HasItsLargestUnit) {
    EXPECT_EQ("0s", shortDurationText(0));
    EXPECT_EQ("0s", shortDurationText(999));
    EXPECT_EQ("59s", shortDurationText(59999));
    EXPECT_EQ("1m", shortDurationText(60000));
    EXPECT_EQ("59m", shortDurationText(3599999));
    EXPECT_EQ("1h", shortDurationText(3600000));
    EXPECT_EQ("23h", shortDurationText(86399999));
    EXPECT_EQ("12d", shortDurationText(12ULL * 86400000));
}

} // namespace qel::tools

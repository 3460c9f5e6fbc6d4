// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/TimeText.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <iomanip>
#include <limits>
#include <random>
#include <sstream>
#include <string>

namespace qel::tools {

TEST(TimeTextTest, Parse_ReadsSecondsAndFractions) {
    EXPECT_EQ(0U, parseTime("1970-01-01T00:00:00Z"));
    EXPECT_EQ(1686296078000U, parseTime("2023-06-09T07:34:38Z"));
    EXPECT_EQ(1686296078500U, parseTime("2023-06-09T07:34:38.5Z"));
    EXPECT_EQ(1686296078050U, parseTime("2023-06-09T07:34:38.05Z"));
    EXPECT_EQ(1686296078001U, parseTime("2023-06-09T07:34:38.001Z"));
    EXPECT_EQ(253402300799000U, parseTime("9999-12-31T23:59:59Z"));
}

// Every day from 1970 to 2104, the century without a leap day in it, against the C library's calendar.
TEST(TimeTextTest, ParseAndText_AgreeWithTheCalendarOfTheSystem) {
    constexpr std::time_t secondsPerDay = 86400;
    constexpr std::time_t noon = 43200;
    for (std::time_t day = 0; day < 49310; ++day) {
        std::time_t const seconds = day * secondsPerDay + noon;
        std::tm parts{};
        ::gmtime_r(&seconds, &parts);
        char text[32] = {};
        ASSERT_EQ(20U, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts));
        auto const milliseconds = static_cast<std::uint64_t>(seconds) * 1000;
        ASSERT_EQ(milliseconds, parseTime(text)) << text;
        ASSERT_EQ(text, timeText(milliseconds));
    }
}

namespace {

/// The date of a day since 1970, counted day by day from the start of its 400 years.
std::string plainDate(std::uint64_t day) {
    constexpr std::uint64_t daysPerEra = 146097;
    auto year = 1970 + day / daysPerEra * 400; // each 400 years have equal calendars
    auto rest = day % daysPerEra;
    auto const isLeap = [](std::uint64_t of) {
        return (of % 4 == 0 && of % 100 != 0) || of % 400 == 0;
    };
    for (; rest >= (isLeap(year) ? 366U : 365U); ++year) {
        rest -= isLeap(year) ? 366U : 365U;
    }
    std::array<unsigned, 12> const months{31, isLeap(year) ? 29U : 28U, 31, 30, 31, 30, 31, 31, 30, 31, 30,
                                          31};
    std::size_t month = 0;
    for (; rest >= months.at(month); ++month) {
        rest -= months.at(month);
    }
    std::ostringstream text;
    text << std::setfill('0') << std::setw(4) << year << '-' << std::setw(2) << month + 1 << '-'
         << std::setw(2) << rest + 1;
    return text.str();
}

void expectDate(std::uint64_t day) {
    constexpr std::uint64_t msPerDay = 86400000;
    ASSERT_EQ(plainDate(day) + "T00:00:00Z", timeText(day * msPerDay)) << day;
    ASSERT_EQ(plainDate(day) + "T00:00:00.001Z", timeText(day * msPerDay + 1)) << day;
}

} // namespace

// Every day of the 400 years after which the calendar repeats, and of the last ones that a time can have.
TEST(TimeTextTest, TextOfEachDayOfACycle_IsItsDate) {
    constexpr std::uint64_t daysPerEra = 146097;
    constexpr std::uint64_t lastDay = std::numeric_limits<std::uint64_t>::max() / 86400000;
    for (std::uint64_t day = 0; day <= daysPerEra; ++day) {
        expectDate(day);
    }
    for (std::uint64_t day = lastDay - daysPerEra; day < lastDay; ++day) {
        expectDate(day);
    }
}

TEST(TimeTextTest, TextOfDaysOverTheWholeRange_IsTheirDate) {
    constexpr std::uint64_t lastDay = std::numeric_limits<std::uint64_t>::max() / 86400000;
    std::mt19937_64 random(11); // NOLINT(cert-msc32-c,cert-msc51-cpp): each run shall take the same days
    for (int round = 0; round < 20000; ++round) {
        expectDate(random() % lastDay);
    }
}

// The largest times used to take seconds each.
TEST(TimeTextTest, TextOfTheLargestTime_TakesNoLongerThanAnyOther) {
    constexpr auto largest = std::numeric_limits<std::uint64_t>::max();
    for (std::uint64_t back = 0; back < 100000; ++back) {
        ASSERT_EQ("584556019-04-03T14:25:5", timeText(largest - back % 1000).substr(0, 23));
    }
    EXPECT_EQ("584556019-04-03T14:25:51.615Z", timeText(largest));
}

TEST(TimeTextTest, Text_ShowsAFractionOnlyWhereThereIsOne) {
    EXPECT_EQ("2023-06-09T07:34:38Z", timeText(1686296078000));
    EXPECT_EQ("2023-06-09T07:34:38.007Z", timeText(1686296078007));
    EXPECT_EQ("2023-06-09T07:34:38.070Z", timeText(1686296078070));
    EXPECT_EQ("2023-06-09T07:34:38.700Z", timeText(1686296078700));
}

class NoTimeTest : public testing::TestWithParam<char const*> {};

TEST_P(NoTimeTest, Parse_RefusesIt) {
    EXPECT_EQ(std::nullopt, parseTime(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, NoTimeTest,
    testing::Values("", "Z", "2023-06-09", "2023-06-09T07:34:38", "2023-06-09 07:34:38Z",
                    "2023-06-09T07:34:38z", "2023-06-09T07:34:38+00:00", "2023-06-09T07:34Z",
                    "2023-6-09T07:34:38Z", "2023-06-09T07:34:38.Z", "2023-06-09T07:34:38.1234Z",
                    "2023-06-09T07:34:38,5Z", "2023-06-09T07:34:38.5xZ", "2023-06-09T07:34:38ZZ",
                    " 2023-06-09T07:34:38Z", "2023-06-09T07:34:38Z ", "2023-00-09T07:34:38Z",
                    "2023-13-09T07:34:38Z", "2023-06-00T07:34:38Z", "2023-06-31T07:34:38Z",
                    "2023-02-29T07:34:38Z", "1900-02-29T07:34:38Z", "2100-02-29T00:00:00Z",
                    "2023-06-09T24:00:00Z", "2023-06-09T07:60:38Z", "2023-06-09T07:34:60Z",
                    "1969-12-31T23:59:59Z", "yyyy-mm-ddThh:mm:ssZ", "-023-06-09T07:34:38Z"));

TEST(TimeTextTest, MomentText_IsTheTime) {
    EXPECT_EQ("2023-11-14T22:13:20Z", momentText(1700000000000));
    EXPECT_EQ("9999-12-31T23:59:59.999Z", momentText(253402300799999));
}

TEST(TimeTextTest, MomentTextOfNever_IsADash) {
    EXPECT_EQ("-", momentText(0));
}

TEST(TimeTextTest, MomentTextOfNoCalendarTime_IsTheNumber) {
    EXPECT_FALSE(isCalendarTime(253402300800000));
    EXPECT_EQ("253402300800000", momentText(253402300800000));
    EXPECT_EQ("18446744073709551615", momentText(std::numeric_limits<std::uint64_t>::max()));
}

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/plot/Axis.h"

#include <gmock/gmock.h>

#include <limits>
#include <string>
#include <vector>

namespace qel::plot {

namespace {

using testing::ElementsAre;
using testing::Le;
using testing::SizeIs;

std::vector<std::string> textsOf(NumberAxis const& axis) {
    std::vector<std::string> texts;
    for (auto const tick : axis.ticks()) {
        texts.push_back(axis.text(tick));
    }
    return texts;
}

std::vector<std::string> labels(std::uint64_t from, std::uint64_t until, std::size_t most) {
    std::vector<std::string> texts;
    for (auto const& tick : timeTicks(from, until, most)) {
        texts.push_back(tick.text);
    }
    return texts;
}

constexpr std::uint64_t axisStart = 1'700'000'000'000; // 2023-11-14T22:13:20Z

} // namespace

TEST(AxisTest, Numbers_AreRoundAndEnclose) {
    EXPECT_THAT(textsOf(numberAxis(1012.0, 2749.0, 4)), ElementsAre("1000", "1500", "2000", "2500", "3000"));
    EXPECT_THAT(textsOf(numberAxis(-0.3, 0.2, 5)), ElementsAre("-0.3", "-0.2", "-0.1", "0.0", "0.1", "0.2"));
}

TEST(AxisTest, ConstantNumber_HasRoomAround) {
    auto const axis = numberAxis(230.0, 230.0, 4);
    EXPECT_LT(axis.low, 230.0);
    EXPECT_GT(axis.high, 230.0);
    EXPECT_THAT(textsOf(numberAxis(0.0, 0.0, 2)), ElementsAre("-1", "0", "1"));
}

TEST(AxisTest, ExtremeNumbers_AreHarmless) {
    constexpr auto largest = std::numeric_limits<double>::max();
    EXPECT_THAT(numberAxis(-largest, largest, 5).ticks(), SizeIs(Le(20U)));
    EXPECT_THAT(textsOf(numberAxis(1e30, 3e30, 2)), ElementsAre("1e+30", "2e+30", "3e+30"));
    EXPECT_THAT(numberAxis(5e-324, 1e-323, 5).ticks(), SizeIs(Le(20U)));
}

TEST(AxisTest, Times_AreRound) {
    EXPECT_THAT(labels(axisStart, axisStart + 60000, 4),
                ElementsAre("22:13:30", "22:13:45", "22:14:00", "22:14:15"));
    EXPECT_THAT(labels(axisStart, axisStart + 3600000, 4), ElementsAre("22:15", "22:30", "22:45", "23:00"));
    EXPECT_THAT(labels(axisStart, axisStart + 4 * 86400000ULL, 4),
                ElementsAre("11-15", "11-16", "11-17", "11-18"));
}

TEST(AxisTest, Times_AreBoundedForEveryRange) {
    constexpr auto greatest = std::numeric_limits<std::uint64_t>::max();
    for (auto const length :
         {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{999}, greatest / 2, greatest}) {
        EXPECT_THAT(timeTicks(greatest - length, greatest, 5), SizeIs(Le(7U))) << length;
    }
}

} // namespace qel::plot

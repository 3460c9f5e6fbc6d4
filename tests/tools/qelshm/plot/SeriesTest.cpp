// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/plot/Series.h"

#include <gtest/gtest.h>

#include <limits>

namespace qel::plot {

namespace {

using inspect::StateClass;

constexpr std::uint64_t from = 1000000;

std::size_t pointsIn(Series const& series) {
    std::size_t count = 0;
    for (auto const& piece : series.pieces()) {
        count += piece.size();
    }
    return count;
}

} // namespace

TEST(SeriesTest, FewSamples_AreAllKept) {
    Series sut(from, from + 1000, 100);
    for (std::uint64_t index = 0; index <= 10; ++index) {
        sut.add(from + index * 100, static_cast<double>(index), StateClass::Plain);
    }
    ASSERT_EQ(1U, sut.pieces().size());
    EXPECT_EQ(11U, pointsIn(sut));
    EXPECT_EQ(0.0, sut.least());
    EXPECT_EQ(10.0, sut.greatest());
    EXPECT_EQ(10.0, sut.last());
}

TEST(SeriesTest, ManySamples_KeepEveryPeakInBoundedMemory) {
    Series sut(from, from + 1000000, 10);
    for (std::uint64_t index = 0; index < 1000000; ++index) {
        sut.add(from + index, index == 123456 ? 99.0 : static_cast<double>(index % 7), StateClass::Plain);
    }
    EXPECT_LE(pointsIn(sut), 40U);
    bool isThere = false;
    auto const pieces = sut.pieces();
    for (auto const& point : pieces.front()) {
        isThere = isThere || (point.number == 99.0 && point.time == from + 123456);
    }
    EXPECT_TRUE(isThere);
}

TEST(SeriesTest, NothingDelivered_BreaksTheLine) {
    Series sut(from, from + 1000, 100);
    sut.add(from, 1.0, StateClass::Plain);
    sut.add(from + 100, 1.0, StateClass::Plain);
    sut.add(from + 200, std::nullopt, StateClass::NoValue);
    sut.add(from + 300, 2.0, StateClass::Plain);
    sut.pause(from + 300);
    sut.add(from + 900, 2.0, StateClass::Plain);
    EXPECT_EQ(3U, sut.pieces().size());
}

TEST(SeriesTest, Alarms_AreSpansUpToTheNextState) {
    Series sut(from, from + 1000, 10);
    sut.add(from, 1.0, StateClass::Plain);
    sut.add(from + 200, 1.0, StateClass::Warning);
    sut.add(from + 400, 1.0, StateClass::Alarm);
    sut.add(from + 700, 1.0, StateClass::Plain);
    auto const spans = sut.spans();
    ASSERT_EQ(2U, spans.size());
    EXPECT_EQ(from + 200, spans[0].from);
    EXPECT_EQ(from + 400, spans[0].until);
    EXPECT_FALSE(spans[0].isAlarm);
    EXPECT_EQ(from + 400, spans[1].from);
    EXPECT_EQ(from + 700, spans[1].until);
    EXPECT_TRUE(spans[1].isAlarm);
}

TEST(SeriesTest, LastAlarm_HoldsToTheEnd) {
    Series sut(from, from + 1000, 10);
    sut.add(from + 500, 1.0, StateClass::Alarm);
    sut.end(from + 1000);
    ASSERT_EQ(1U, sut.spans().size());
    EXPECT_EQ(from + 1000, sut.spans()[0].until);
}

TEST(SeriesTest, SingleMomentAndExtremeTimes_AreHarmless) {
    Series moment(from, from, 10);
    moment.add(from, 1.0, StateClass::Alarm);
    EXPECT_EQ(1U, pointsIn(moment));
    constexpr auto greatest = std::numeric_limits<std::uint64_t>::max();
    Series all(0, greatest, 10);
    all.add(0, -std::numeric_limits<double>::max(), StateClass::Plain);
    all.add(greatest, std::numeric_limits<double>::max(), StateClass::Alarm);
    EXPECT_EQ(2U, pointsIn(all));
}

} // namespace qel::plot

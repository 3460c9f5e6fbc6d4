// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/unit/Stamps.h"

#include <gtest/gtest.h>

namespace qel::tools {

namespace {

constexpr std::uint64_t recordedStart = 1686296070000;
constexpr std::uint64_t now0 = 1795000000000;

ReplayMoment step(std::uint64_t due) {
    return {recordedStart + due, due};
}

} // namespace

TEST(StampsTest, RecordedTimes_StayAsTheyAre) {
    Stamps sut;
    sut.begin();
    EXPECT_EQ(recordedStart, sut.of(step(0)));
    EXPECT_EQ(recordedStart + 5000, sut.of(step(5000)));
    EXPECT_EQ(7U, sut.of(7, step(5000)));
}

TEST(StampsTest, Present_StartsNowAndGoesOnAtTheSpeed) {
    auto sut = Stamps::present(10.0, [] { return now0; });
    sut.begin();
    EXPECT_EQ(now0, sut.of(step(0)));
    EXPECT_EQ(now0 + 500, sut.of(step(5000)));
    EXPECT_EQ(now0 + 400, sut.of(recordedStart + 4000, step(5000))) << "of an earlier delivery";
}

TEST(StampsTest, TimeBeforeTheStart_KeepsItsDistance) {
    auto sut = Stamps::present(10.0, [] { return now0; });
    sut.begin();
    EXPECT_EQ(now0 - 3000, sut.of(recordedStart - 3000, step(0)));
    EXPECT_EQ(now0 - 3000, sut.of(recordedStart - 3000, step(8000))) << "the same in each sample";
}

TEST(StampsTest, TimeBefore1970_IsNeverZeroWhichMeansNoTime) {
    auto sut = Stamps::present(1.0, [] { return std::uint64_t{5}; });
    sut.begin();
    EXPECT_EQ(1U, sut.of(recordedStart - 3000, step(0)));
}

TEST(StampsTest, PresentWithoutASpeed_IsTheMomentOfTheStep) {
    std::uint64_t now = now0;
    auto sut = Stamps::present(0.0, [&] { return now; });
    sut.begin();
    now += 20;
    EXPECT_EQ(now0 + 20, sut.of(step(5000)));
    EXPECT_EQ(now0 + 20 - 1000, sut.of(recordedStart + 4000, step(5000)));
}

} // namespace qel::tools

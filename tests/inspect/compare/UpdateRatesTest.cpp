// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/compare/UpdateRates.h"

#include "format/ValueKeys.h"
#include "inspect/image/LiveRegion.h"

#include "tests/support/ForgedRegion.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <stdexcept>

namespace qel::inspect {

namespace {

namespace key = shm::key;
using std::chrono::milliseconds;

constexpr long long inlet = test::pointId(1, 0, 1);
constexpr std::size_t slot = test::rawValue(7);

/// An inlet with the values 1 and 2, in the slots 7 and 8.
class UpdateRatesTest : public testing::Test {
protected:
    UpdateRatesTest() {
        region_.point(5, inlet);
        region_.devices({5});
        region_.values(5, 7, {key::voltage, key::peakVoltage});
        for (auto const value : {slot, test::rawValue(8)}) {
            region_.raw().set<std::uint64_t>(value + test::field::valueAt, 0);
        }
    }

    /// Takes an image this many ms after the first one.
    void takeAt(int time) { sut_.add(LiveRegion().copy(), start_ + milliseconds(time)); }

    void deliver(std::uint64_t at) const { region_.raw().set(slot + test::field::valueAt, at); }
    void number(double number) const { region_.raw().set(slot, number); }
    void state(std::int32_t state) const { region_.raw().set(slot + test::field::valueState, state); }

    UpdateRate first() const { return sut_.rates().at(0); }

    test::ForgedRegion region_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    UpdateRates sut_;
};

} // namespace

TEST_F(UpdateRatesTest, WithoutImagesThereIsNothing) {
    EXPECT_TRUE(sut_.rates().empty());
}

TEST_F(UpdateRatesTest, OneImageShowsNoUpdate) {
    deliver(99);
    takeAt(0);
    ASSERT_EQ(2U, sut_.rates().size());
    EXPECT_EQ(inlet | key::voltage, first().svid);
    EXPECT_EQ(inlet | key::peakVoltage, sut_.rates()[1].svid);
    EXPECT_EQ(0U, first().count);
    EXPECT_EQ(99U, first().lastAt);
    EXPECT_EQ(0, first().observed.count());
    EXPECT_EQ(std::nullopt, first().perSecond);
    EXPECT_TRUE(first().isPresent);
}

TEST_F(UpdateRatesTest, CountsChangesOfTheTime) {
    for (int image = 0; image <= 20; ++image) {
        deliver(static_cast<std::uint64_t>(image / 2)); // every second image
        takeAt(image * 100);
    }
    auto const rate = first();
    EXPECT_EQ(10U, rate.count);
    EXPECT_EQ(10U, rate.lastAt);
    EXPECT_EQ(milliseconds(2000), rate.observed);
    EXPECT_DOUBLE_EQ(5.0, rate.perSecond.value());
    EXPECT_EQ(milliseconds(200), rate.shortest);
    EXPECT_EQ(milliseconds(200), rate.longest);

    auto const other = sut_.rates()[1];
    EXPECT_EQ(0U, other.count);
    EXPECT_DOUBLE_EQ(0.0, other.perSecond.value());
    EXPECT_EQ(std::nullopt, other.shortest);
}

TEST_F(UpdateRatesTest, UpdatesInMostImages_MayBeMore) {
    for (int image = 0; image <= 20; ++image) {
        deliver(static_cast<std::uint64_t>(image)); // how many were missed in between is unknown
        takeAt(image * 100);
    }
    EXPECT_EQ(20U, first().looks);
    EXPECT_TRUE(mayBeHigher(first()));
    EXPECT_FALSE(mayBeHigher(sut_.rates()[1]));
}

TEST_F(UpdateRatesTest, UpdatesInEverySecondImage_AreAllThereAre) {
    for (int image = 0; image <= 20; ++image) {
        deliver(static_cast<std::uint64_t>(image / 2));
        takeAt(image * 100);
    }
    EXPECT_FALSE(mayBeHigher(first()));
}

TEST_F(UpdateRatesTest, FewImages_SayNothingOfARate) {
    for (int image = 0; image < 10; ++image) {
        deliver(static_cast<std::uint64_t>(image));
        takeAt(image * 100);
    }
    EXPECT_FALSE(mayBeHigher(first()));
}

TEST_F(UpdateRatesTest, GapsAreTakenBetweenUpdates) {
    takeAt(0);
    for (int const time : {100, 350, 400}) {
        deliver(static_cast<std::uint64_t>(time));
        takeAt(time);
        if (time == 100) {
            EXPECT_EQ(std::nullopt, first().shortest) << "one update has no gap";
        }
    }
    takeAt(1000);
    EXPECT_EQ(milliseconds(50), first().shortest);
    EXPECT_EQ(milliseconds(250), first().longest);
    EXPECT_DOUBLE_EQ(3.0, first().perSecond.value());
}

TEST_F(UpdateRatesTest, NumberOrStateAloneCountsToo) {
    number(1.0);
    state(0);
    takeAt(0);
    number(2.0);
    takeAt(10);
    EXPECT_EQ(1U, first().count);
    state(3);
    takeAt(20);
    EXPECT_EQ(2U, first().count);
    takeAt(30);
    EXPECT_EQ(2U, first().count);
}

TEST_F(UpdateRatesTest, NumberThatIsNoneIsNotAlwaysNew) {
    number(std::numeric_limits<double>::quiet_NaN());
    takeAt(0);
    takeAt(10);
    EXPECT_EQ(0U, first().count);
}

TEST_F(UpdateRatesTest, UpdateCaughtHalfWayCountsOnce) {
    number(1.0);
    takeAt(0);
    deliver(5);
    takeAt(10);
    number(2.0);
    state(0);
    takeAt(20);
    EXPECT_EQ(1U, first().count);
    number(3.0);
    takeAt(30);
    EXPECT_EQ(2U, first().count);
}

TEST_F(UpdateRatesTest, ValueThatComesLaterIsTimedFromThere) {
    region_.values(5, 7, {key::voltage});
    takeAt(0);
    region_.values(5, 7, {key::voltage, 3});
    takeAt(1000);
    region_.raw().set<std::uint64_t>(test::rawValue(8) + test::field::valueAt, 77);
    takeAt(1500);
    auto const rates = sut_.rates();
    ASSERT_EQ(2U, rates.size());
    EXPECT_EQ(inlet | 3, rates[1].svid);
    EXPECT_EQ(milliseconds(500), rates[1].observed);
    EXPECT_DOUBLE_EQ(2.0, rates[1].perSecond.value());
}

TEST_F(UpdateRatesTest, ValueThatGoesKeepsWhatWasSeen) {
    takeAt(0);
    deliver(1);
    takeAt(500);
    region_.devices({});
    region_.raw().set(test::field::devices, test::rawNone);
    takeAt(1000);
    EXPECT_EQ(1U, first().count);
    EXPECT_EQ(milliseconds(500), first().observed);
    EXPECT_FALSE(first().isPresent);
}

TEST_F(UpdateRatesTest, OfTwoValuesOfOneKeyTheFirstCounts) {
    region_.values(5, 7, {key::voltage, key::voltage});
    takeAt(0);
    region_.raw().set<std::uint64_t>(test::rawValue(8) + test::field::valueAt, 77);
    takeAt(10);
    ASSERT_EQ(1U, sut_.rates().size());
    EXPECT_EQ(0U, first().count);
}

TEST_F(UpdateRatesTest, TimesThatGoBackAreRefused) {
    takeAt(10);
    EXPECT_THROW(takeAt(9), std::invalid_argument);
    takeAt(10);
}

} // namespace qel::inspect

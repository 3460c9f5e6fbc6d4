// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/why/ValueSummary.h"

#include "format/ValueKeys.h"
#include "inspect/image/LiveRegion.h"

#include "tests/support/ForgedRegion.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace qel::inspect {

namespace {

namespace key = shm::key;
using std::chrono::milliseconds;

constexpr std::uint64_t now = 1'700'000'000'000;
constexpr long long summedInlet = test::pointId(1, 0, 1);

/// The unit with one value, and an inlet with three; all delivered now, without error.
class ValueSummaryTest : public testing::Test {
protected:
    ValueSummaryTest() {
        region_.point(0, test::pointId(1, 0));
        region_.point(1, summedInlet);
        region_.devices({0});
        region_.children(0, {1});
        region_.values(0, 4, {key::voltage});
        region_.values(1, 5, {key::voltage, key::current, key::activePower});
        for (std::uint32_t slot = 4; slot <= 7; ++slot) {
            state(slot, eStatus_NoError);
            at(slot, now);
        }
    }

    void state(std::uint32_t slot, std::int32_t state) const {
        region_.raw().set<std::int32_t>(test::rawValue(slot) + test::field::valueState, state);
    }
    void at(std::uint32_t slot, std::uint64_t time) const {
        region_.raw().set<std::uint64_t>(test::rawValue(slot) + test::field::valueAt, time);
    }

    static ValueSummary sut(milliseconds staleAfter = STALE_AFTER) {
        auto const image = LiveRegion().copy();
        return valueSummary(image, PointTree(image), now, staleAfter);
    }

    static std::size_t lost(std::uint32_t node) {
        auto const image = LiveRegion().copy();
        return lostValues(image, PointTree(image), node);
    }

    test::ForgedRegion const region_;
};

} // namespace

TEST_F(ValueSummaryTest, ValuesThatAreWellCountNowhere) {
    EXPECT_EQ(0U, sut().alarm + sut().warning + sut().lost + sut().never + sut().stale);
}

TEST_F(ValueSummaryTest, StatesCountByTheirClass_LostByItself) {
    state(4, eStatus_HighAlarm);
    state(5, eStatus_LowAlarm);
    state(6, eStatus_HighWarning);
    state(7, eStatus_Lost);
    EXPECT_EQ(2U, sut().alarm);
    EXPECT_EQ(1U, sut().warning);
    EXPECT_EQ(1U, sut().lost);
}

TEST_F(ValueSummaryTest, ValueWithoutDelivery_IsNeitherStaleNorTheOldest) {
    at(5, 0);
    at(6, now - 1);
    EXPECT_EQ(1U, sut().never);
    EXPECT_EQ(0U, sut().stale);
    EXPECT_EQ(now - 1, sut().oldest->at);
}

TEST_F(ValueSummaryTest, OneOldValueAmongFreshOnes_IsStaleAndTheOldest) {
    constexpr std::uint64_t fiveHours = 18'000'000;
    at(6, now - fiveHours);
    EXPECT_EQ(1U, sut().stale);
    ASSERT_TRUE(sut().oldest);
    EXPECT_EQ(summedInlet, sut().oldest->point);
    EXPECT_EQ(key::current, sut().oldest->key);
    EXPECT_EQ(now - fiveHours, sut().oldest->at);
}

TEST_F(ValueSummaryTest, BoundOfStaleness_IsTheCallers) {
    at(6, now - 2000);
    EXPECT_EQ(0U, sut(milliseconds(2000)).stale);
    EXPECT_EQ(1U, sut(milliseconds(1999)).stale);
    EXPECT_EQ(0U, sut().stale);
}

TEST_F(ValueSummaryTest, SensorThatDeliversEveryOtherMinute_IsNotStale) {
    at(6, now - 240'000);
    EXPECT_EQ(0U, sut().stale);
    at(6, now - 300'001);
    EXPECT_EQ(1U, sut().stale);
}

TEST_F(ValueSummaryTest, ValueAheadOfTheClock_MakesNoOtherStale) {
    at(6, std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(0U, sut().stale);
}

TEST_F(ValueSummaryTest, WithoutDeliveries_ThereIsNoOldestValue) {
    for (std::uint32_t slot = 4; slot <= 7; ++slot) {
        at(slot, 0);
    }
    EXPECT_EQ(4U, sut().never);
    EXPECT_FALSE(sut().oldest);
}

TEST_F(ValueSummaryTest, LostValues_AreThoseOfAPointAndBelow) {
    state(4, eStatus_Lost);
    state(7, eStatus_Lost);
    EXPECT_EQ(2U, lost(NO_NODE));
    EXPECT_EQ(2U, lost(0));
    EXPECT_EQ(1U, lost(1));
}

} // namespace qel::inspect

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/ValueTracker.h"

#include "format/ValueKeys.h"
#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qel::watch {

namespace {

constexpr std::uint64_t bucketMs = 2000;

class ValueTrackerTest : public testing::Test {
protected:
    std::vector<ValueChange> update(std::uint64_t ticks) {
        auto const image = unit.image();
        structure.update(image);
        return sut.update(structure, image, ticks);
    }

    std::uint32_t positionOf(ValueChange const& change) const { return structure.values()[change.value].pos; }

    test::SmallUnit unit;
    UnitStructure structure{WatchedNames({})};
    ValueTracker sut{bucketMs};
};

} // namespace

TEST_F(ValueTrackerTest, FirstImage_IsTakenAsItIs) {
    unit.deliver(unit.inletPower, 100.0, 1000);
    EXPECT_TRUE(update(0).empty());
    EXPECT_FALSE(sut.sinceChange(unit.inletPower, 500));
    EXPECT_FALSE(sut.sinceDelivery(unit.inletPower, 500));
}

TEST_F(ValueTrackerTest, ChangedNumber_IsAChangeAndADelivery) {
    update(0);
    unit.deliver(unit.inletPower, 100.0, 1000);
    auto const changes = update(250);
    ASSERT_EQ(1U, changes.size());
    EXPECT_EQ(unit.inletPower, positionOf(changes[0]));
    EXPECT_EQ(eStatus_NoError, changes[0].before);
    EXPECT_EQ(50U, sut.sinceChange(unit.inletPower, 300));
    EXPECT_EQ(50U, sut.sinceDelivery(unit.inletPower, 300));
    EXPECT_FALSE(sut.sinceChange(unit.inletVoltage, 300));
    EXPECT_TRUE(update(500).empty());
    EXPECT_EQ(250U, sut.sinceChange(unit.inletPower, 500));
}

TEST_F(ValueTrackerTest, ChangedState_SaysWhatItWasBefore) {
    unit.deliver(unit.inletPower, 100.0, 1000, eStatus_HighWarning);
    update(0);
    unit.deliver(unit.inletPower, 100.0, 1000, eStatus_HighAlarm);
    auto const changes = update(250);
    ASSERT_EQ(1U, changes.size());
    EXPECT_EQ(eStatus_HighWarning, changes[0].before);
}

TEST_F(ValueTrackerTest, SameNumberDeliveredAnew_IsNoChange) {
    unit.deliver(unit.inletPower, 100.0, 1000);
    update(0);
    unit.deliver(unit.inletPower, 100.0, 2000);
    EXPECT_TRUE(update(250).empty());
    EXPECT_EQ(0U, sut.sinceDelivery(unit.inletPower, 250));
    EXPECT_FALSE(sut.sinceChange(unit.inletPower, 250));
}

TEST_F(ValueTrackerTest, NotANumber_IsTheSameAsItself) {
    unit.deliver(unit.inletPower, std::nan(""), 1000);
    update(0);
    EXPECT_TRUE(update(250).empty());
    unit.deliver(unit.inletPower, 1.0, 1000);
    EXPECT_EQ(1U, update(500).size());
}

TEST_F(ValueTrackerTest, ValueThatComesBack_IsTakenAsItIs) {
    update(0);
    unit.region().root.version = 0;
    update(250);
    unit.region().root.version = shm::ACTIVE_VERSION;
    unit.deliver(unit.inletPower, 7.0, 1000);
    EXPECT_TRUE(update(500).empty());
    unit.deliver(unit.inletPower, 8.0, 1000);
    EXPECT_EQ(1U, update(750).size());
}

TEST_F(ValueTrackerTest, SlotWithAnotherValue_IsTakenAsItIs) {
    update(0);
    unit.region().values[unit.inletPower].key = shm::key::current;
    unit.deliver(unit.inletPower, 7.0, 1000);
    EXPECT_TRUE(update(250).empty());
}

TEST_F(ValueTrackerTest, History_IsFilledByTime) {
    for (std::uint64_t ticks = 0; ticks < 3 * bucketMs; ticks += 500) {
        unit.deliver(unit.inletPower, static_cast<double>(ticks), ticks + 1);
        update(ticks);
    }
    auto const* const history = sut.history(unit.inletPower);
    ASSERT_NE(nullptr, history);
    EXPECT_EQ(2U, sut.bucket(3 * bucketMs - 1));
    EXPECT_EQ(2000.0F, history->at(1).min);
    EXPECT_EQ(3500.0F, history->at(1).max);
    EXPECT_EQ(5500.0F, history->at(2).last);
}

TEST_F(ValueTrackerTest, ValueWithoutANumber_LeavesAGap) {
    unit.deliver(unit.inletPower, 5.0, 1, eStatus_ExpectedValue);
    update(0);
    EXPECT_TRUE(sut.history(unit.inletPower)->at(0).isEmpty());
    unit.deliver(unit.inletPower, 5.0, 1, eStatus_Lost);
    update(250);
    EXPECT_EQ(5.0F, sut.history(unit.inletPower)->at(0).last);
}

TEST_F(ValueTrackerTest, NumberThatIsNoState_LeavesAGap) {
    std::uint64_t ticks = 0;
    for (int const state : {44, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(),
                            static_cast<int>(eStatus_UndefinedValue)}) {
        unit.deliver(unit.inletPower, 5.0, 1, static_cast<eStatus_Bits>(state));
        update(ticks += bucketMs);
        EXPECT_TRUE(sut.history(unit.inletPower)->at(sut.bucket(ticks)).isEmpty()) << state;
    }
}

TEST_F(ValueTrackerTest, ValueNeverDelivered_HasNoNumber) {
    update(0);
    EXPECT_TRUE(sut.history(unit.inletPower)->at(0).isEmpty()) << "its 0 was never measured";
    EXPECT_TRUE(sut.statistics(unit.inletPower).isEmpty());
}

TEST_F(ValueTrackerTest, LongerHistories_HaveLongerBuckets) {
    unit.deliver(unit.inletPower, 3.0, 1);
    for (std::uint64_t ticks = 0; ticks < 60 * bucketMs; ticks += bucketMs) {
        update(ticks);
    }
    EXPECT_EQ(10 * bucketMs, sut.bucketMs(1));
    EXPECT_EQ(5U, sut.bucket(59 * bucketMs, 1));
    EXPECT_EQ(3.0F, sut.history(unit.inletPower, 1)->at(5).last);
    EXPECT_EQ(0U, sut.bucket(59 * bucketMs, 2));
    EXPECT_EQ(3.0F, sut.history(unit.inletPower, 2)->at(0).last);
}

TEST_F(ValueTrackerTest, Forget_TakesTheNextImageAsItIs) {
    update(0);
    unit.deliver(unit.inletPower, 1.0, 1);
    update(250);
    sut.forget();
    unit.deliver(unit.inletPower, 2.0, 2);
    EXPECT_TRUE(update(1000).empty());
    EXPECT_FALSE(sut.sinceDelivery(unit.inletPower, 1000)) << "it says nothing about the new writer";
    EXPECT_EQ(500U, sut.sinceSeen(unit.inletPower, 1500));
    EXPECT_EQ(500U, sut.sinceSeen(unit.inletVoltage, 1500));
}

TEST_F(ValueTrackerTest, ValueThatComesLater_IsSeenSinceThen) {
    update(0);
    unit.value(unit.unit, shm::key::current);
    update(700);
    EXPECT_EQ(300U, sut.sinceSeen(5, 1000));
    EXPECT_EQ(1000U, sut.sinceSeen(unit.inletPower, 1000));
}

TEST_F(ValueTrackerTest, WithoutBuckets_KeepsNoHistory) {
    ValueTracker plain(0);
    structure.update(unit.image());
    plain.update(structure, unit.image(), 100);
    EXPECT_EQ(nullptr, plain.history(unit.inletPower));
    EXPECT_EQ(0U, plain.bucket(5000));
}

} // namespace qel::watch

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchedUnit.h"

#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gmock/gmock.h>

#include <limits>
#include <stdexcept>

namespace qel::watch {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WatchedUnitTest : public testing::Test {
protected:
    UnitValue const& valueAt(std::uint32_t pos) const {
        for (auto const& value : sut.structure().values()) {
            if (value.pos == pos) {
                return value;
            }
        }
        throw std::out_of_range("no such value");
    }

    std::vector<std::string> events() const {
        std::vector<std::string> texts;
        texts.reserve(sut.events().events().size());
        for (auto const& event : sut.events().events()) {
            texts.push_back(event.text);
        }
        return texts;
    }

    test::SmallUnit unit;
    WatchedUnit sut{WatchedNames({}), std::chrono::milliseconds(250)};
};

} // namespace

TEST_F(WatchedUnitTest, Age_CountsFromTheDeliveryThatWasSeen) {
    unit.deliver(unit.inletPower, 1.0, 5);
    sut.update(unit.snapshot(0));
    sut.update(unit.snapshot(4000));
    auto age = sut.ageOf(valueAt(unit.inletPower));
    EXPECT_EQ(4000U, age.ms);
    EXPECT_TRUE(age.isAtLeast) << "it was delivered before";
    unit.deliver(unit.inletPower, 2.0, 6);
    sut.update(unit.snapshot(5000));
    sut.update(unit.snapshot(7000));
    age = sut.ageOf(valueAt(unit.inletPower));
    EXPECT_EQ(2000U, age.ms);
    EXPECT_FALSE(age.isAtLeast);
    EXPECT_TRUE(sut.ageOf(valueAt(unit.inletVoltage)).isNever);
}

TEST_F(WatchedUnitTest, Ages_BeginAnewWithANewWritersObject) {
    unit.deliver(unit.inletPower, 1.0, 5);
    sut.update(unit.snapshot(0, 1));
    unit.deliver(unit.inletPower, 2.0, 6);
    sut.update(unit.snapshot(1000, 1));
    sut.update(unit.snapshot(60000, 2));
    auto const age = sut.ageOf(valueAt(unit.inletPower));
    EXPECT_EQ(0U, age.ms);
    EXPECT_TRUE(age.isAtLeast);
    EXPECT_FALSE(sut.sinceDelivery());
    EXPECT_EQ(0U, sut.sinceLive());
    sut.update(unit.snapshot(61000, 2));
    EXPECT_EQ(1000U, sut.sinceLive());
    EXPECT_EQ(1000U, sut.sinceReattached());
}

TEST_F(WatchedUnitTest, Stale_IsWhatWasNotDeliveredForLonger) {
    Freshness const freshness{std::chrono::seconds(2), std::chrono::seconds(2)};
    unit.deliver(unit.inletPower, 1.0, 5);
    unit.deliver(unit.socket2Power, 1.0, 5, eStatus_Lost);
    sut.update(unit.snapshot(0));
    sut.update(unit.snapshot(2000));
    EXPECT_FALSE(sut.isStale(valueAt(unit.inletPower), freshness));
    sut.update(unit.snapshot(2001));
    EXPECT_TRUE(sut.isStale(valueAt(unit.inletPower), freshness));
    EXPECT_FALSE(sut.isStale(valueAt(unit.inletVoltage), freshness)) << "never delivered";
    EXPECT_FALSE(sut.isStale(valueAt(unit.socket2Power), freshness)) << "its state says it";
}

TEST_F(WatchedUnitTest, UsualBoundOfStaleness_IsThatOfAllVerbs) {
    EXPECT_EQ(inspect::STALE_AFTER, Freshness().value);
}

TEST_F(WatchedUnitTest, OldValueAmongFreshOnes_IsStaleAtOnce) {
    constexpr std::uint64_t fiveHours = 18000000;
    auto const now = unit.snapshot(0).now;
    unit.deliver(unit.inletPower, 1.0, now);
    unit.deliver(unit.inletVoltage, 1.0, now - fiveHours);
    unit.deliver(unit.socket2Power, 1.0, std::numeric_limits<std::uint64_t>::max());
    sut.update(unit.snapshot(0));
    auto const age = sut.ageOf(valueAt(unit.inletVoltage));
    EXPECT_EQ(fiveHours, age.ms);
    EXPECT_TRUE(age.isAtLeast);
    EXPECT_TRUE(sut.isStale(valueAt(unit.inletVoltage), {}));
    EXPECT_FALSE(sut.isStale(valueAt(unit.inletPower), {}));
    EXPECT_FALSE(sut.isStale(valueAt(unit.socket2Power), {})) << "its time tells nothing";
    unit.deliver(unit.inletVoltage, 2.0, now - fiveHours + 1);
    sut.update(unit.snapshot(1000));
    EXPECT_FALSE(sut.isStale(valueAt(unit.inletVoltage), {})) << "a delivery was seen";
}

TEST_F(WatchedUnitTest, FirstSnapshot_IsNoEvent) {
    sut.update(unit.snapshot(0));
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(WatchedUnitTest, ChangedStates_AreEvents) {
    sut.update(unit.snapshot(0));
    unit.deliver(unit.inletPower, 1.0, 5, eStatus_HighAlarm);
    unit.deliver(unit.inletVoltage, 230.0, 5);
    unit.region().root.state = eStatus_ChildAlarm;
    sut.update(unit.snapshot(1000));
    EXPECT_THAT(events(),
                ElementsAre("unit: On => Child Alarm", "unit1/inlet1:active-power: No Error => High Alarm"));
    EXPECT_EQ(unit.snapshot(1000).now, sut.events().events().back().at);
    EXPECT_EQ(tools::Style::Alarm, sut.events().events().back().style);
}

TEST_F(WatchedUnitTest, ChangedStructure_IsAnEvent) {
    sut.update(unit.snapshot(0));
    unit.removeLastChild(unit.inlet);
    sut.update(unit.snapshot(250));
    EXPECT_THAT(events(), ElementsAre("structure changed: 3 points, 3 values"));
}

TEST_F(WatchedUnitTest, RegionThatGoesAndComesBack_IsAnEvent) {
    sut.update(unit.snapshot(0, 1));
    unit.region().root.version = 0;
    sut.update(unit.snapshot(250, 1));
    unit.region().root.version = shm::ACTIVE_VERSION;
    sut.update(unit.snapshot(500, 2));
    EXPECT_THAT(events(), ElementsAre("region active => inactive",
                                      "new shared-memory object opened: the writer has started anew",
                                      "region inactive => active"));
}

TEST_F(WatchedUnitTest, Copy_DoesNotFollow) {
    unit.deliver(unit.inletPower, 1.0, 5);
    sut.update(unit.snapshot(0));
    auto const copy = sut;
    unit.deliver(unit.inletPower, 2.0, 6, eStatus_HighAlarm);
    sut.update(unit.snapshot(9000));
    EXPECT_EQ(1.0, copy.record(valueAt(unit.inletPower)).value);
    EXPECT_EQ(1.0F, copy.tracker().history(unit.inletPower)->at(0).last);
    EXPECT_TRUE(copy.tracker().history(unit.inletPower)->at(4).isEmpty());
    EXPECT_THAT(copy.events().events(), IsEmpty());
}

} // namespace qel::watch

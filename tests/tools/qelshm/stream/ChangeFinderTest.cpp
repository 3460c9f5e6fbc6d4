// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/stream/ChangeFinder.h"

#include "tests/tools/qelshm/stream/StreamFixture.h"

#include <limits>

namespace qel::stream {

namespace {

using Texts = std::vector<std::string>;

class ChangeFinderTest : public test::StreamFixture {
protected:
    bool isPictureNew(unsigned objects = 1) {
        bool isNew = false;
        look([&](Report const& report) { isNew = report.isPictureNew; }, objects);
        return isNew;
    }
    bool isConditionNew() {
        bool isNew = false;
        look([&](Report const& report) { isNew = report.isConditionNew; });
        return isNew;
    }
};

} // namespace

TEST_F(ChangeFinderTest, FirstSnapshot_IsAPictureWithoutChanges) {
    look([](Report const& report) {
        EXPECT_TRUE(report.isPictureNew);
        EXPECT_FALSE(report.isConditionNew);
        EXPECT_TRUE(report.changes.empty());
    });
    EXPECT_FALSE(isPictureNew());
}

TEST_F(ChangeFinderTest, ChangedNumber_IsAChangeButNoneOfTheState) {
    changes();
    unit.deliver(unit.inletPower, 12.5, time);
    look([](Report const& report) {
        ASSERT_EQ(1U, report.changes.size());
        auto const& change = report.changes.front();
        EXPECT_EQ("unit1/inlet1:active-power", change.path);
        EXPECT_EQ("active-power", change.key);
        EXPECT_EQ(12.5, change.number);
        EXPECT_EQ(time, change.at);
        EXPECT_FALSE(change.isStateChange());
        EXPECT_EQ("unit1/inlet1", report.structure.points()[change.point].path);
    });
    unit.deliver(unit.inletPower, 12.5, time + 1);
    EXPECT_EQ(Texts{}, changes()) << "a new time alone";
}

TEST_F(ChangeFinderTest, NotANumber_IsTheSameAsBefore) {
    unit.deliver(unit.inletPower, std::numeric_limits<double>::quiet_NaN(), time);
    changes();
    EXPECT_EQ(Texts{}, changes());
}

TEST_F(ChangeFinderTest, StatesOfValuesAndPoints_AreChanges) {
    changes();
    unit.deliver(unit.socket2Power, 1.0, time, eStatus_HighAlarm);
    unit.region().points[unit.socket2].state = eStatus_OnAlarm;
    EXPECT_EQ((Texts{"unit1/inlet1/socket2: 17 => 9", "unit1/inlet1/socket2:active-power: 0 => 1"}),
              changes());
}

TEST_F(ChangeFinderTest, Selection_BringsNothingElse) {
    names = watch::WatchedNames({"unit1/inlet1"});
    finder = ChangeFinder(names);
    changes();
    for (auto const value : {unit.inletPower, unit.socket2Power, unit.socket10Power}) {
        unit.deliver(value, 1.0, time);
    }
    unit.region().points[unit.unit].state = eStatus_ChildAlarm;
    unit.region().points[unit.inlet].state = eStatus_OnAlarm;
    EXPECT_EQ((Texts{"unit1/inlet1: 17 => 9", "unit1/inlet1:active-power: 0 => 0"}), changes());
}

TEST_F(ChangeFinderTest, OtherStructureOrObject_IsANewPicture) {
    EXPECT_TRUE(isPictureNew());
    auto const added = unit.point(0x010001FFFF0B0000, unit.inlet);
    EXPECT_TRUE(isPictureNew());
    EXPECT_FALSE(isPictureNew());
    EXPECT_TRUE(isPictureNew(2)) << "of another object";
    EXPECT_FALSE(isPictureNew(2));
    static_cast<void>(added);
}

TEST_F(ChangeFinderTest, RegionThatGoesAndComes_IsComparedWithWhatWasSeenLast) {
    changes();
    unit.region().root.version = 0;
    EXPECT_TRUE(isConditionNew());
    EXPECT_FALSE(isConditionNew());
    unit.deliver(unit.socket2Power, 1.0, time, eStatus_HighAlarm);
    unit.region().root.version = shm::ACTIVE_VERSION;
    look([](Report const& report) {
        EXPECT_TRUE(report.isConditionNew);
        EXPECT_TRUE(report.isPictureNew);
        ASSERT_EQ(1U, report.changes.size());
        EXPECT_EQ(eStatus_NoError, report.changes.front().before);
    });
}

} // namespace qel::stream

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WhyView.h"

#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gmock/gmock.h>

namespace qel::watch {

namespace {

std::vector<std::string> textsOf(test::SmallUnit const& unit, std::uint32_t point) {
    WatchedUnit watched{WatchedNames({}), std::chrono::milliseconds(250)};
    watched.update(unit.snapshot(0));
    std::vector<std::string> texts;
    for (auto const& line : whyLines(watched, point)) {
        texts.push_back(line.text);
    }
    return texts;
}

} // namespace

TEST(WhyViewTest, PointThatIsWell_IsSaidToBe) {
    EXPECT_THAT(textsOf({}, 0), testing::ElementsAre("unit1 is On: nothing is wrong"));
}

TEST(WhyViewTest, LostValues_AreCountedBecauseTheStateDoesNot) {
    test::SmallUnit unit;
    unit.deliver(unit.inletPower, 1.0, 1, eStatus_Lost);
    unit.deliver(unit.socket2Power, 1.0, 1, eStatus_Lost);
    EXPECT_THAT(textsOf(unit, 0), testing::ElementsAre("unit1 is On: nothing is wrong",
                                                       "2 values are Lost, which does not count"));
    EXPECT_EQ("1 value is Lost, which does not count", textsOf(unit, 3).back());
}

TEST(WhyViewTest, CauseBelow_HasItsWayUp) {
    test::SmallUnit unit;
    unit.deliver(unit.socket2Voltage, 255.0, 1, eStatus_HighAlarm);
    EXPECT_THAT(textsOf(unit, 1),
                testing::ElementsAre("unit1/inlet1 is On", "propagation will result in Child Alarm",
                                     "unit1/inlet1/socket2:voltage  255.0 V  High Alarm",
                                     "  unit1/inlet1/socket2  On, Alarm  alarm of a value",
                                     "  unit1/inlet1  Child Alarm  alarm of a child"));
}

TEST(WhyViewTest, PointThatIsNotThere_HasNoLines) {
    EXPECT_THAT(textsOf({}, 99), testing::IsEmpty());
}

} // namespace qel::watch

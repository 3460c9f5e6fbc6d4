// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/Schedule.h"

#include "tools/replay/unit/Topology.h"

#include "tests/tools/replay/InputFailure.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace qel::tools {

namespace {

Appearances plugs(std::vector<double> comes, std::vector<double> goes) {
    return {sensorPoint, "--plug-after", std::move(comes), "--unplug-after", std::move(goes)};
}

Appearances groups(std::vector<double> comes, std::vector<double> goes) {
    return {socketGroup, "--group-after", std::move(comes), "--ungroup-after", std::move(goes)};
}

// ms, kind, whether it comes
using Changes = std::vector<std::tuple<std::uint64_t, PointKind, bool>>;

Changes changesOf(Schedule& sut) {
    Changes changes;
    while (sut.due()) {
        auto const due = sut.due().value();
        auto const change = sut.next();
        EXPECT_EQ(due, change.due);
        changes.emplace_back(change.due, change.point.kind, change.comes);
    }
    return changes;
}

std::string failureOf(Appearances const& appearances) {
    Schedule sut;
    return test::inputFailure([&] { sut.add(appearances); });
}

} // namespace

TEST(ScheduleTest, Empty_HasNothingToCome) {
    Schedule const sut;
    EXPECT_EQ(std::nullopt, sut.due());
    EXPECT_FALSE(sut.isToCome(sensorPoint));
    EXPECT_FALSE(sut.isToGo(sensorPoint));
}

TEST(ScheduleTest, Changes_AreSortedByTime) {
    Schedule sut;
    sut.add(plugs({30, 1.5}, {10, 60}));
    sut.add(groups({5}, {}));

    EXPECT_EQ((Changes{{1500, PointKind::Sensor, true},
                       {5000, PointKind::Group, true},
                       {10000, PointKind::Sensor, false},
                       {30000, PointKind::Sensor, true},
                       {60000, PointKind::Sensor, false}}),
              changesOf(sut));
}

TEST(ScheduleTest, FirstChange_TellsWhetherThePointIsThereAtTheStart) {
    Schedule sut;
    sut.add(plugs({30}, {10}));
    sut.add(groups({5}, {20}));

    EXPECT_TRUE(sut.isToGo(sensorPoint));
    EXPECT_FALSE(sut.isToCome(sensorPoint));
    EXPECT_TRUE(sut.isToCome(socketGroup));
    EXPECT_FALSE(sut.isToGo(socketGroup));
    sut.next(); // the group comes
    EXPECT_FALSE(sut.isToCome(socketGroup));
    EXPECT_TRUE(sut.isToGo(socketGroup));
}

TEST(ScheduleTest, ComingTwice_IsRefused) {
    EXPECT_EQ(
        "--plug-after: the change at 20000 ms follows --plug-after at 10000 ms; expected --plug-after and "
        "--unplug-after to alternate, at different times",
        failureOf(plugs({10, 20}, {})));
}

TEST(ScheduleTest, GoingTwice_IsRefused) {
    EXPECT_EQ("--ungroup-after: the change at 30000 ms follows --ungroup-after at 20000 ms; expected "
              "--group-after and "
              "--ungroup-after to alternate, at different times",
              failureOf(groups({10, 40}, {20, 30})));
}

TEST(ScheduleTest, ComingAndGoingAtOneTime_IsRefused) {
    EXPECT_EQ(
        "--unplug-after: the change at 10000 ms follows --plug-after at 10000 ms; expected --plug-after and "
        "--unplug-after to alternate, at different times",
        failureOf(plugs({10}, {10})));
}

TEST(ScheduleTest, DifferentPoints_MayChangeAtOneTime) {
    Schedule sut;
    sut.add(plugs({10}, {}));
    sut.add(groups({10}, {}));
    EXPECT_EQ(2U, changesOf(sut).size());
}

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/unit/LiveUnit.h"

#include "format/ValueKeys.h"
#include "tools/replay/unit/Topology.h"

#include "tests/tools/replay/RawUnit.h"

#include <gtest/gtest.h>

namespace qel::tools {

namespace {

namespace key = shm::key;

constexpr PointId inlet{PointKind::Inlet, 1};
constexpr PointId circuit{PointKind::Circuit, 1};
constexpr PointId socket6{PointKind::Socket, 6};
constexpr std::uint64_t time0 = 1686296078000;
constexpr eStatus_Bits expected = eStatus_ExpectedValue;

Structure base() {
    return Structure({{inlet, key::voltage}, {socket6, key::voltage}, {socket6, key::activeEnergy}});
}

Structure withSensorAndGroup() {
    return Structure({{inlet, key::voltage},
                      {socket6, key::voltage},
                      {socket6, key::activeEnergy},
                      {sensorPoint, key::temperature},
                      {socketGroup, key::activePower}});
}

} // namespace

TEST(LiveUnitTest, New_CreatesAnInactiveRegionAndRemovesItAtTheEnd) {
    {
        LiveUnit const sut;
        EXPECT_NE(32U, test::RawUnit().version());
    }
    EXPECT_FALSE(test::rawRegionExists());
}

TEST(LiveUnitTest, Build_LaysOutPointsWithTypesAndStates) {
    LiveUnit sut;

    sut.build(base(), time0);

    test::RawUnit const region;
    EXPECT_EQ(32U, region.version());
    EXPECT_EQ(
        (std::set<long long>{pointSvid(unitPoint), pointSvid(inlet), pointSvid(circuit), pointSvid(socket6)}),
        region.points());
    EXPECT_EQ((std::set<long long>{pointSvid(inlet) | key::voltage, pointSvid(socket6) | key::voltage,
                                   pointSvid(socket6) | key::activeEnergy}),
              region.values());
    auto const structure = base();
    for (auto const& point : structure.points()) {
        EXPECT_EQ(typeCode(point), static_cast<int>(region.typeOf(pointSvid(point))));
        EXPECT_EQ(eStatus_On, region.stateOf(pointSvid(point)));
        EXPECT_EQ(time0, region.timeOf(pointSvid(point)));
    }
    EXPECT_EQ(expected, region.value(pointSvid(inlet) | key::voltage)->state);
}

TEST(LiveUnitTest, Deliver_StoresAReading) {
    LiveUnit sut;
    sut.build(base(), time0);

    EXPECT_TRUE(sut.deliver({pointSvid(socket6) | key::voltage, time0 + 1, 230.5, eStatus_HighWarning}));

    auto const stored = test::RawUnit().value(pointSvid(socket6) | key::voltage);
    ASSERT_TRUE(stored);
    EXPECT_EQ(230.5, stored->number);
    EXPECT_EQ(time0 + 1, stored->time);
    EXPECT_EQ(eStatus_HighWarning, stored->state);
}

TEST(LiveUnitTest, Deliver_StoresWattHoursAsKilowattHours) {
    LiveUnit sut;
    sut.build(base(), time0);

    EXPECT_TRUE(sut.deliver({pointSvid(socket6) | key::activeEnergy, time0, 1500.0, eStatus_NoError}));

    EXPECT_EQ(1.5, test::RawUnit().value(pointSvid(socket6) | key::activeEnergy)->number);
}

TEST(LiveUnitTest, Deliver_RefusesWhatHasNoPlace) {
    LiveUnit sut;
    sut.build(base(), time0);

    EXPECT_FALSE(sut.deliver({pointSvid(socket6) | key::current, time0, 1.0, eStatus_NoError}));
    EXPECT_FALSE(sut.deliver({pointSvid(sensorPoint) | key::temperature, time0, 1.0, eStatus_NoError}));
}

TEST(LiveUnitTest, Propagate_FoldsStatesUpToTheGlobalOne) {
    LiveUnit sut;
    sut.build(base(), time0);
    EXPECT_EQ(eStatus_On, sut.propagate());

    sut.deliver({pointSvid(socket6) | key::voltage, time0, 300.0, eStatus_HighAlarm});
    EXPECT_EQ(eStatus_ChildAlarm, sut.propagate());

    test::RawUnit const region;
    EXPECT_EQ(eStatus_OnAlarm, region.stateOf(pointSvid(socket6)));
    EXPECT_EQ(eStatus_ChildAlarm, region.stateOf(pointSvid(unitPoint)));
    EXPECT_EQ(eStatus_ChildAlarm, region.globalState());
}

TEST(LiveUnitTest, Change_AddsPointsWithTypesAndStates) {
    LiveUnit sut;
    sut.build(base(), time0);
    sut.deliver({pointSvid(inlet) | key::voltage, time0, 230.0, eStatus_NoError});

    EXPECT_TRUE(sut.change(withSensorAndGroup(), time0 + 5));

    test::RawUnit const region;
    EXPECT_EQ(6U, region.points().size());
    EXPECT_EQ(2U, region.typeOf(pointSvid(sensorPoint)));
    EXPECT_EQ(1U, region.typeOf(pointSvid(socketGroup)));
    EXPECT_EQ(eStatus_On, region.stateOf(pointSvid(sensorPoint)));
    EXPECT_EQ(time0 + 5, region.timeOf(pointSvid(sensorPoint)));
    EXPECT_EQ(time0, region.timeOf(pointSvid(inlet))) << "known points are left alone";
    EXPECT_EQ(230.0, region.value(pointSvid(inlet) | key::voltage)->number);
    EXPECT_TRUE(sut.deliver({pointSvid(sensorPoint) | key::temperature, time0, 21.0, eStatus_NoError}));
}

TEST(LiveUnitTest, Change_RemovesPoints) {
    LiveUnit sut;
    sut.build(withSensorAndGroup(), time0);
    ASSERT_EQ(6U, test::RawUnit().points().size());

    EXPECT_TRUE(sut.change(base(), time0 + 5));

    EXPECT_EQ(
        (std::set<long long>{pointSvid(unitPoint), pointSvid(inlet), pointSvid(circuit), pointSvid(socket6)}),
        test::RawUnit().points());
    EXPECT_FALSE(sut.deliver({pointSvid(sensorPoint) | key::temperature, time0, 21.0, eStatus_NoError}));
    EXPECT_FALSE(sut.structure().has(sensorPoint));
}

TEST(LiveUnitTest, ChangeToTheSame_ChangesNothing) {
    LiveUnit sut;
    sut.build(base(), time0);

    EXPECT_FALSE(sut.change(base(), time0 + 5));
}

} // namespace qel::tools

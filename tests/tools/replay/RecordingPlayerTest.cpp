// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/RecordingPlayer.h"

#include "format/ValueKeys.h"
#include "inspect/naming/ValuePath.h"
#include "tools/replay/unit/Topology.h"

#include "tests/support/TempFile.h"
#include "tests/tools/replay/RawUnit.h"

#include <gmock/gmock.h>

#include <sstream>
#include <string>

namespace qel::tools {

namespace {

namespace key = shm::key;

constexpr std::uint64_t time0 = 1686296070000; // 2023-06-09T07:34:30Z
constexpr PointId inlet{PointKind::Inlet, 1};

std::string const inletRows = "timestamp_utc,inlet1_active_power_W,inlet1_voltage_V\n"
                              "2023-06-09T07:34:30Z,1000,230\n"
                              "2023-06-09T07:34:31Z,3000,\n"
                              "2023-06-09T07:34:32Z,1000,231\n";
std::string const sensorRows = "timestamp_utc,sensor1_temperature_degC\n"
                               "2015-02-02T13:19:00Z,20\n"
                               "2015-02-02T13:19:01Z,21\n"
                               "2015-02-02T13:19:02Z,22\n";
std::string const groupRows =
    "timestamp_utc,outlet1_active_power_W,outlet2_active_power_W,outlet3_active_power_W\n"
    "2023-06-09T07:34:30Z,1,2,3\n"
    "2023-06-09T07:34:31Z,4,5,6\n"
    "2023-06-09T07:34:32Z,7,8,9\n";

class RecordingPlayerTest : public testing::Test {
protected:
    RecordingPlayer::Parts partsOf(std::vector<std::string> const& texts) {
        std::vector<std::string> paths;
        std::vector<std::unique_ptr<test::TempFile>> files;
        for (auto const& text : texts) {
            files.push_back(std::make_unique<test::TempFile>(text));
            paths.push_back(files.back()->path());
        }
        RecordingPlayer::Parts parts;
        parts.recordings = Recordings::read(paths);
        return parts;
    }

    std::unique_ptr<RecordingPlayer> playerOf(RecordingPlayer::Parts parts) {
        return std::make_unique<RecordingPlayer>(std::move(parts), log_, [this] { ++announced_; });
    }

    static void stepTo(RecordingPlayer& sut, std::uint64_t time) {
        while (sut.due() && *sut.due() <= time) {
            sut.step();
        }
    }

    std::ostringstream out_;
    ReplayLog log_{&out_};
    int announced_ = 0;
};

} // namespace

TEST_F(RecordingPlayerTest, New_PublishesNothing) {
    auto const sut = playerOf(partsOf({inletRows}));
    EXPECT_FALSE(test::rawRegionExists());
}

TEST_F(RecordingPlayerTest, Begin_PublishesTheUnitWithoutReadings) {
    auto const sut = playerOf(partsOf({inletRows}));

    sut->begin();

    test::RawUnit const region;
    EXPECT_EQ(32U, region.version());
    EXPECT_EQ((std::set<long long>{pointSvid(unitPoint), pointSvid(inlet)}), region.points());
    EXPECT_EQ(eStatus_ExpectedValue, region.value(pointSvid(inlet) | key::activePower)->state);
    EXPECT_EQ(time0, region.timeOf(pointSvid(unitPoint)));
    EXPECT_EQ("qel-replay: region active: 2 points, 3 values; 1 recording, 3 rows\n", out_.str());
}

TEST_F(RecordingPlayerTest, Steps_BringTheRowsIntoTheRegion) {
    auto const sut = playerOf(partsOf({inletRows}));
    sut->begin();

    EXPECT_EQ(0U, sut->due());
    sut->step();
    test::RawUnit const region;
    EXPECT_EQ(1000.0, region.value(pointSvid(inlet) | key::activePower)->number);
    EXPECT_EQ(time0, region.value(pointSvid(inlet) | key::activePower)->time);
    EXPECT_EQ(1000U, sut->due());
    sut->step();
    EXPECT_EQ(eStatus_Lost, region.value(pointSvid(inlet) | key::voltage)->state);
    EXPECT_EQ(230.0, region.value(pointSvid(inlet) | key::voltage)->number);
    EXPECT_EQ(time0 + 1000, region.value(pointSvid(inlet) | key::voltage)->time);
    sut->step();
    EXPECT_EQ(231.0, region.value(pointSvid(inlet) | key::voltage)->number);
    // 1000 W to 3000 W to 1000 W, a second each.
    EXPECT_NEAR(4000.0 / 3600.0 / 1000.0, region.value(pointSvid(inlet) | key::activeEnergy)->number, 1e-12);
    EXPECT_EQ(std::nullopt, sut->due());
}

TEST_F(RecordingPlayerTest, MissingReadings_AreLoggedWhenTheirNumberChanges) {
    auto const sut = playerOf(partsOf({inletRows}));
    sut->begin();
    out_.str("");
    stepTo(*sut, 2000);
    EXPECT_THAT(out_.str(),
                testing::MatchesRegex("2023-06-09T07:34:31Z  readings   [^ ]+: 1 of 2 missing\n"
                                      "2023-06-09T07:34:32Z  readings   [^ ]+: 0 of 2 missing\n"));
}

TEST_F(RecordingPlayerTest, CrossedLimit_IsLoggedAndFoldedUp) {
    auto parts = partsOf({inletRows});
    parts.limits.add("inlet1_active_power_W:high-alarm=2500", {"--limit"});
    auto const sut = playerOf(std::move(parts));
    sut->begin();
    out_.str("");

    stepTo(*sut, 1000);

    test::RawUnit const region;
    EXPECT_EQ(eStatus_HighAlarm, region.value(pointSvid(inlet) | key::activePower)->state);
    EXPECT_EQ(eStatus_OnAlarm, region.stateOf(pointSvid(inlet)));
    EXPECT_EQ(eStatus_ChildAlarm, region.globalState());
    EXPECT_EQ(eStatus_ChildAlarm, sut->globalState());
    EXPECT_THAT(out_.str(),
                testing::HasSubstr("2023-06-09T07:34:31Z  limit      inlet1_active_power_W  3000.0 W  No "
                                   "Error => High Alarm\n"));
    EXPECT_THAT(out_.str(), testing::HasSubstr("2023-06-09T07:34:31Z  global     On => Child Alarm\n"));
    out_.str("");
    stepTo(*sut, 2000);
    EXPECT_EQ(eStatus_On, region.globalState());
    EXPECT_THAT(out_.str(), testing::HasSubstr("2023-06-09T07:34:32Z  global     Child Alarm => On\n"));
}

TEST_F(RecordingPlayerTest, Sensor_IsThereFromTheStartWithoutSchedule) {
    auto const sut = playerOf(partsOf({sensorRows}));
    sut->begin();
    EXPECT_EQ(1U, test::RawUnit().points().count(pointSvid(sensorPoint)));
}

TEST_F(RecordingPlayerTest, Sensor_ComesAndGoesBySchedule) {
    auto parts = partsOf({inletRows, sensorRows});
    parts.schedule.add({sensorPoint, "--plug-after", {1.0}, "--unplug-after", {1.5}});
    auto const sut = playerOf(std::move(parts));
    sut->begin();
    test::RawUnit const region;

    stepTo(*sut, 999);
    EXPECT_EQ(0U, region.points().count(pointSvid(sensorPoint)));
    EXPECT_EQ(0, announced_);
    stepTo(*sut, 1000);
    EXPECT_EQ(1U, region.points().count(pointSvid(sensorPoint)));
    EXPECT_EQ(21.0, region.value(pointSvid(sensorPoint) | key::temperature)->number)
        << "it gets the readings of its moment";
    EXPECT_EQ(1, announced_);
    stepTo(*sut, 1500);
    EXPECT_EQ(0U, region.points().count(pointSvid(sensorPoint)));
    EXPECT_EQ(2, announced_);
    stepTo(*sut, 2000);
    EXPECT_EQ(std::nullopt, sut->due());
    EXPECT_THAT(
        out_.str(),
        testing::HasSubstr("2015-02-02T13:19:01Z  structure  sensor 1/1 added, now 3 points, 4 values\n"));
    EXPECT_THAT(out_.str(),
                testing::HasSubstr(
                    "2015-02-02T13:19:01.500Z  structure  sensor 1/1 removed, now 2 points, 3 values\n"));
    log_.ended("", 0.0, eStatus_On);
    EXPECT_THAT(out_.str(), testing::Not(testing::HasSubstr("refused")));
}

TEST_F(RecordingPlayerTest, SensorThatGoesFirst_IsThereFromTheStart) {
    auto parts = partsOf({inletRows, sensorRows});
    parts.schedule.add({sensorPoint, "--plug-after", {}, "--unplug-after", {0.5}});
    auto const sut = playerOf(std::move(parts));
    sut->begin();
    EXPECT_EQ(1U, test::RawUnit().points().count(pointSvid(sensorPoint)));
    stepTo(*sut, 1000);
    EXPECT_EQ(0U, test::RawUnit().points().count(pointSvid(sensorPoint)));
}

TEST_F(RecordingPlayerTest, LimitOfASensorThatIsNotThere_IsSilent) {
    auto parts = partsOf({inletRows, sensorRows});
    parts.limits.add("sensor1_temperature_degC:high-alarm=21", {"--limit"});
    parts.schedule.add({sensorPoint, "--plug-after", {5.0}, "--unplug-after", {}});
    auto const sut = playerOf(std::move(parts));
    sut->begin();
    stepTo(*sut, 5000);
    EXPECT_THAT(out_.str(), testing::Not(testing::HasSubstr("limit")));
}

TEST_F(RecordingPlayerTest, RemovedPoint_TakesItsAlarmAlong) {
    auto parts = partsOf({inletRows, sensorRows});
    parts.limits.add("sensor1_temperature_degC:high-alarm=20", {"--limit"});
    parts.schedule.add({sensorPoint, "--plug-after", {}, "--unplug-after", {1.5}});
    auto const sut = playerOf(std::move(parts));
    sut->begin();
    stepTo(*sut, 1000);
    EXPECT_EQ(eStatus_ChildAlarm, test::RawUnit().globalState());
    stepTo(*sut, 1500);
    EXPECT_EQ(eStatus_On, test::RawUnit().globalState());
}

TEST_F(RecordingPlayerTest, Group_IsThereOnlyBySchedule) {
    auto parts = partsOf({groupRows});
    parts.schedule.add({socketGroup, "--group-after", {1.0}, "--ungroup-after", {2.0}});
    auto const sut = playerOf(std::move(parts));
    sut->begin();
    test::RawUnit const region;
    EXPECT_EQ(0U, region.points().count(pointSvid(socketGroup)));
    stepTo(*sut, 1000);
    EXPECT_EQ(1U, region.points().count(pointSvid(socketGroup)));
    EXPECT_EQ(15.0, region.value(pointSvid(socketGroup) | key::activePower)->number);
    EXPECT_EQ(eStatus_On, region.stateOf(pointSvid(socketGroup)));
    stepTo(*sut, 2000);
    EXPECT_EQ(0U, region.points().count(pointSvid(socketGroup)));
    EXPECT_EQ(2, announced_);
}

TEST_F(RecordingPlayerTest, GroupWithoutSchedule_IsNotThere) {
    auto const sut = playerOf(partsOf({groupRows}));
    sut->begin();
    EXPECT_EQ(0U, test::RawUnit().points().count(pointSvid(socketGroup)));
}

namespace {

Assignment assignment(std::string const& text) {
    return parseAssignment(text, {"set"});
}

} // namespace

TEST_F(RecordingPlayerTest, ValueSetByHand_HoldsAgainstTheRecording) {
    auto const sut = playerOf(partsOf({inletRows}));
    auto const power = pointSvid(inlet) | key::activePower;
    sut->begin();
    sut->step();

    EXPECT_EQ((std::vector<std::string>{"unit1/inlet1:active-power = 4000.0 W, Alarm"}),
              sut->set(assignment("unit1/inlet1:active-power=4000,alarm"), 700));

    test::RawUnit const region;
    EXPECT_EQ(4000.0, region.value(power)->number);
    EXPECT_EQ(eStatus_Alarm, region.value(power)->state);
    EXPECT_EQ(time0 + 700, region.value(power)->time);
    EXPECT_EQ(eStatus_ChildAlarm, sut->globalState());
    stepTo(*sut, 2000);
    EXPECT_EQ(4000.0, region.value(power)->number);
    EXPECT_EQ(time0 + 2000, region.value(power)->time) << "the time of the last row";
    EXPECT_EQ(231.0, region.value(pointSvid(inlet) | key::voltage)->number) << "others go on";
    EXPECT_NEAR(4000.0 / 3600.0 / 1000.0, region.value(pointSvid(inlet) | key::activeEnergy)->number, 1e-12)
        << "of the recorded power";
}

TEST_F(RecordingPlayerTest, ReleasedValue_FollowsTheLastRowAtOnce) {
    auto const sut = playerOf(partsOf({inletRows}));
    auto const power = pointSvid(inlet) | key::activePower;
    sut->begin();
    sut->step();
    sut->set(assignment("unit1/inlet1:active-power=4000,alarm"), 700);
    sut->step();

    EXPECT_EQ((std::vector<std::string>{"unit1/inlet1:active-power"}),
              sut->unset(inspect::ValuePattern("unit1/**"), 1300));

    test::RawUnit const region;
    EXPECT_EQ(3000.0, region.value(power)->number);
    EXPECT_EQ(eStatus_NoError, region.value(power)->state);
    EXPECT_EQ(time0 + 1300, region.value(power)->time);
    EXPECT_EQ(eStatus_On, sut->globalState());
    EXPECT_TRUE(sut->unset(inspect::ValuePattern("unit1/**"), 1300).empty()) << "nothing is left";
}

TEST_F(RecordingPlayerTest, EnergySetByHand_IsInTheUnitOfReaders) {
    auto const sut = playerOf(partsOf({inletRows}));
    sut->begin();
    EXPECT_EQ((std::vector<std::string>{"unit1/inlet1:active-energy = 12.5 kWh, No Error"}),
              sut->set(assignment("unit1/inlet1:active-energy=12.5"), 0));
    EXPECT_EQ(12.5, test::RawUnit().value(pointSvid(inlet) | key::activeEnergy)->number);
}

TEST_F(RecordingPlayerTest, PatternSetByHand_SetsEachValue) {
    auto const sut = playerOf(partsOf({groupRows}));
    sut->begin();
    EXPECT_EQ(3U, sut->set(assignment("unit1/**/socket*:active-power=0,lost"), 0).size());
    EXPECT_TRUE(sut->set(assignment("unit1/**:voltage=0,lost"), 0).empty());
}

TEST_F(RecordingPlayerTest, StateOfAPointSetByHand_HoldsUntilItIsReleased) {
    auto const sut = playerOf(partsOf({inletRows}));
    sut->begin();
    sut->step();
    test::RawUnit const region;
    sut->set(assignment("unit1/inlet1:" + inspect::keyWord(stateKey(PointKind::Inlet)) + "=0,off"), 0);
    EXPECT_EQ(eStatus_Off, region.stateOf(pointSvid(inlet)));
    stepTo(*sut, 2000);
    EXPECT_EQ(eStatus_Off, region.stateOf(pointSvid(inlet)));
    sut->unset(inspect::ValuePattern("unit1/inlet1"), 2000);
    EXPECT_EQ(eStatus_On, region.stateOf(pointSvid(inlet)));
}

TEST_F(RecordingPlayerTest, ValueSetByHand_IsThereAgainWhenItsPointComesBack) {
    auto parts = partsOf({sensorRows});
    parts.schedule.add({sensorPoint, "--plug-after", {1.5}, "--unplug-after", {0.5}});
    auto const sut = playerOf(std::move(parts));
    auto const temperature = pointSvid(sensorPoint) | key::temperature;
    sut->begin();
    sut->step();
    sut->set(assignment("unit1/sensor1.1:temperature=99,high-alarm"), 0);
    stepTo(*sut, 1500);
    test::RawUnit const region;
    EXPECT_EQ(99.0, region.value(temperature)->number);
    EXPECT_EQ(eStatus_ChildAlarm, sut->globalState());
}

TEST_F(RecordingPlayerTest, Present_StampsRowsChangesAndValuesSetByHand) {
    constexpr std::uint64_t now = 1795000000000;
    auto parts = partsOf({inletRows, sensorRows});
    parts.schedule.add({sensorPoint, "--plug-after", {1.5}, "--unplug-after", {}});
    parts.stamps = Stamps::present(2.0, [] { return now; });
    auto const sut = playerOf(std::move(parts));
    sut->begin();
    stepTo(*sut, 2000);
    test::RawUnit const region;
    EXPECT_EQ(now, region.timeOf(pointSvid(unitPoint)));
    EXPECT_EQ(now + 1000, region.value(pointSvid(inlet) | key::voltage)->time);
    EXPECT_EQ(now + 1000, region.value(pointSvid(sensorPoint) | key::temperature)->time);
    EXPECT_EQ(now + 750, region.timeOf(pointSvid(sensorPoint)));
    EXPECT_NEAR(4000.0 / 3600.0 / 1000.0, region.value(pointSvid(inlet) | key::activeEnergy)->number, 1e-12)
        << "over the recorded time";
    sut->set(assignment("unit1/inlet1:voltage=1"), 3000);
    EXPECT_EQ(now + 1500, region.value(pointSvid(inlet) | key::voltage)->time);
}

} // namespace qel::tools

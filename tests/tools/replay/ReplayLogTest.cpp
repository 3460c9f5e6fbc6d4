// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/ReplayLog.h"

#include "format/ValueKeys.h"
#include "tools/replay/unit/Structure.h"
#include "tools/replay/unit/Topology.h"

#include <gtest/gtest.h>

#include <sstream>

namespace qel::tools {

namespace {

namespace key = shm::key;

constexpr std::uint64_t time0 = 1686296078000;
constexpr PointId socket6{PointKind::Socket, 6};

class ReplayLogTest : public testing::Test {
protected:
    std::ostringstream out_;
    ReplayLog sut_{&out_};
};

} // namespace

TEST_F(ReplayLogTest, Start_TellsWhatIsReplayed) {
    sut_.started(15, 102, 1, 8422);
    sut_.started(1, 1, 2, 1);
    EXPECT_EQ("qel-replay: region active: 15 points, 102 values; 1 recording, 8422 rows\n"
              "qel-replay: region active: 1 point, 1 value; 2 recordings, 1 row\n",
              out_.str());
}

TEST_F(ReplayLogTest, Crossing_TellsTimeColumnNumberAndStates) {
    sut_.crossed({"outlet6_active_power_W",
                  eStatus_NoError,
                  {valueSvid({socket6, key::activePower}), time0, 2310.9, eStatus_HighWarning},
                  false});
    EXPECT_EQ("2023-06-09T07:34:38Z  limit      outlet6_active_power_W  2310.9 W  No Error => High Warning\n",
              out_.str());
}

TEST_F(ReplayLogTest, CrossingOfAnEnergy_IsToldInTheUnitOfTheRegion) {
    sut_.crossed({"outlet6_active_energy_Wh",
                  eStatus_NoError,
                  {valueSvid({socket6, key::activeEnergy}), time0, 1500.0, eStatus_HighAlarm},
                  false});
    EXPECT_EQ("2023-06-09T07:34:38Z  limit      outlet6_active_energy_Wh  1.5 kWh  No Error => High Alarm\n",
              out_.str());
}

TEST_F(ReplayLogTest, MissingReadings_AreToldWithTheirFile) {
    sut_.missing(time0, "outlets_1s.csv", 28, 77);
    EXPECT_EQ("2023-06-09T07:34:38Z  readings   outlets_1s.csv: 28 of 77 missing\n", out_.str());
}

TEST_F(ReplayLogTest, LostReading_IsNoCrossingOfALimit) {
    sut_.crossed({"outlet6_active_power_W",
                  eStatus_HighAlarm,
                  {valueSvid({socket6, key::activePower}), time0, 2500.0, eStatus_Lost},
                  true});
    EXPECT_EQ("2023-06-09T07:34:38Z  readings   outlet6_active_power_W  2500.0 W  High Alarm => Lost\n",
              out_.str());
}

TEST_F(ReplayLogTest, FileName_IsWrittenWithoutControlCharacters) {
    sut_.missing(time0, "a\x1B]0;title\x07\x1B[31mb\xFF.csv", 1, 2);
    EXPECT_EQ("2023-06-09T07:34:38Z  readings   a\\x1B]0;title\\x07\\x1B[31mb\\xFF.csv: 1 of 2 missing\n",
              out_.str());
}

TEST_F(ReplayLogTest, StopAtTheLimit_TellsHowManyStepsThereAre) {
    sut_.countStep();
    EXPECT_EQ("1 of 9752 rows replayed, stopped at --until", sut_.stoppedEarly(9752));
    EXPECT_EQ("1 row replayed, stopped at --until", sut_.stoppedEarly(std::nullopt));
}

TEST_F(ReplayLogTest, ValuesSetByHand_AreTold) {
    sut_.set(time0, "unit1/inlet1:voltage = 1.0 V, Lost");
    sut_.unset(time0, "unit1/inlet1:voltage");
    EXPECT_EQ("2023-06-09T07:34:38Z  set        unit1/inlet1:voltage = 1.0 V, Lost\n"
              "2023-06-09T07:34:38Z  unset      unit1/inlet1:voltage\n",
              out_.str());
}

TEST_F(ReplayLogTest, StructureChange_TellsThePointAndWhatIsThereNow) {
    sut_.changed(time0, {0, sensorPoint, true}, 16, 105);
    sut_.changed(time0, {0, socketGroup, false}, 15, 102);
    EXPECT_EQ("2023-06-09T07:34:38Z  structure  sensor 1/1 added, now 16 points, 105 values\n"
              "2023-06-09T07:34:38Z  structure  group 1 removed, now 15 points, 102 values\n",
              out_.str());
}

TEST_F(ReplayLogTest, GlobalState_TellsBothStates) {
    sut_.globalState(time0, eStatus_On, eStatus_ChildAlarm);
    EXPECT_EQ("2023-06-09T07:34:38Z  global     On => Child Alarm\n", out_.str());
}

TEST_F(ReplayLogTest, Hold_TellsThatTheRegionStays) {
    sut_.held(sut_.allReplayed());
    EXPECT_EQ("qel-replay: all rows replayed; the region stays until a signal comes\n", out_.str());
}

TEST_F(ReplayLogTest, End_SumsUpWhatWasCounted) {
    sut_.crossed({"outlet6_active_power_W",
                  eStatus_NoError,
                  {valueSvid({socket6, key::activePower}), time0, 1, eStatus_HighAlarm},
                  false});
    sut_.crossed({"outlet6_active_power_W",
                  eStatus_HighAlarm,
                  {valueSvid({socket6, key::activePower}), time0, 1, eStatus_Lost},
                  true});
    sut_.changed(time0, {0, sensorPoint, true}, 16, 105);
    sut_.changed(time0, {0, sensorPoint, false}, 16, 105);
    sut_.countStep();
    sut_.countUpdates(1);
    sut_.countUpdates(1);
    out_.str("");

    sut_.ended("all rows replayed", 20.04, eStatus_ChildWarning);
    sut_.countRefused();
    sut_.ended("ended by a signal", 0.0, eStatus_On);

    EXPECT_EQ(
        "qel-replay: all rows replayed: 1 row, 2 updates in 20.0 s; 1 limit crossing, 2 structure changes; "
        "global state Child Warning\n"
        "qel-replay: ended by a signal: 1 row, 2 updates in 0.0 s; 1 limit crossing, 2 structure changes; "
        "global state On; 1 update refused\n",
        out_.str());
}

TEST(ReplayLogOfSamplesTest, Lines_SpeakOfSamplesAndOfNoLimits) {
    std::ostringstream out;
    ReplayLog sut(&out, ReplaySteps::Samples);
    sut.started(15, 102, 1, 20);
    sut.changed(time0, 16, 105);
    sut.held(sut.allReplayed());
    sut.countStep();
    sut.countUpdates(7);
    sut.ended(sut.allReplayed(), 1.0, eStatus_On);
    EXPECT_EQ(
        "qel-replay: region active: 15 points, 102 values; 1 capture, 20 samples\n"
        "2023-06-09T07:34:38Z  structure  changed, now 16 points, 105 values\n"
        "qel-replay: all samples replayed; the region stays until a signal comes\n"
        "qel-replay: all samples replayed: 1 sample, 7 updates in 1.0 s; 1 structure change; global state "
        "On\n",
        out.str());
}

TEST(QuietReplayLogTest, EveryLine_GoesNowhere) {
    ReplayLog sut(nullptr);
    sut.started(1, 1, 1, 1);
    sut.held(sut.allReplayed());
    sut.ended("all rows replayed", 1.0, eStatus_On);
}

} // namespace qel::tools

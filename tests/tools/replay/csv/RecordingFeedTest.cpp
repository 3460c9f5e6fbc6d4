// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/RecordingFeed.h"

#include "format/ValueKeys.h"
#include "tools/replay/csv/ComputedValues.h"
#include "tools/replay/unit/Topology.h"

#include "tests/support/TempFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace qel::tools {

namespace {

namespace key = shm::key;

constexpr std::uint64_t hour = 3600000;

Recordings recordingsOf(std::string const& columns) {
    std::string const empty(static_cast<std::size_t>(std::count(columns.begin(), columns.end(), ',')), ',');
    test::TempFile const file("timestamp_utc," + columns + "\n2023-06-09T07:34:38Z," + empty + '\n');
    return Recordings::read({file.path()});
}

/// A feed of one recording with these columns.
class Feed {
public:
    explicit Feed(std::string const& columns, LimitSet const& limits = {})
        : recordings_(recordingsOf(columns)),
          feed_(recordings_.all().front(), recordings_, limits) {}

    RecordingFeed& operator*() { return feed_; }
    RecordingFeed* operator->() { return &feed_; }

private:
    Recordings recordings_;
    RecordingFeed feed_;
};

std::set<long long> svidsOf(RecordingFeed const& feed) {
    std::set<long long> svids;
    for (auto const& value : feed.values()) {
        EXPECT_TRUE(svids.insert(valueSvid(value)).second) << "fed twice: " << valueSvid(value);
    }
    return svids;
}

long long svid(PointKind kind, unsigned number, unsigned short key) {
    return valueSvid({{kind, number}, key});
}

Reading readingOf(RowReadings const& row, long long svid) {
    auto const found = std::find_if(row.readings.begin(), row.readings.end(),
                                    [&](Reading const& reading) { return reading.svid == svid; });
    EXPECT_NE(row.readings.end(), found);
    return found == row.readings.end() ? Reading{} : *found;
}

void expectReading(double number, eStatus_Bits state, std::uint64_t time, Reading const& reading) {
    EXPECT_NEAR(number, reading.number, 1e-9);
    EXPECT_EQ(state, reading.state);
    EXPECT_EQ(time, reading.time);
}

} // namespace

TEST(RecordingFeedTest, Columns_FeedTheirValuesWithTheTimeOfTheRow) {
    Feed sut("inlet1_voltage_V,outlet6_power_factor");

    auto const row = sut->convert({1234, {230.5, 0.9}});

    EXPECT_EQ((std::set<long long>{svid(PointKind::Inlet, 1, key::voltage),
                                   svid(PointKind::Socket, 6, key::powerFactor)}),
              svidsOf(*sut));
    ASSERT_EQ(2U, row.readings.size());
    expectReading(230.5, eStatus_NoError, 1234, readingOf(row, svid(PointKind::Inlet, 1, key::voltage)));
    expectReading(0.9, eStatus_NoError, 1234, readingOf(row, svid(PointKind::Socket, 6, key::powerFactor)));
    EXPECT_EQ(0U, row.missing);
    EXPECT_TRUE(row.crossings.empty());
}

TEST(RecordingFeedTest, EmptyCell_KeepsTheLastNumberAsLost) {
    Feed sut("inlet1_voltage_V,inlet1_current_A");
    auto const voltage = svid(PointKind::Inlet, 1, key::voltage);

    auto row = sut->convert({1000, {std::nullopt, 1.0}});
    expectReading(0.0, eStatus_Lost, 1000, readingOf(row, voltage));
    EXPECT_EQ(1U, row.missing);
    sut->convert({2000, {230.0, 1.0}});
    row = sut->convert({3000, {std::nullopt, std::nullopt}});
    expectReading(230.0, eStatus_Lost, 3000, readingOf(row, voltage));
    EXPECT_EQ(2U, row.missing);
    row = sut->convert({4000, {231.0, 1.0}});
    expectReading(231.0, eStatus_NoError, 4000, readingOf(row, voltage));
    EXPECT_EQ(0U, row.missing);
}

TEST(RecordingFeedTest, Powers_AreIntegratedToEnergies) {
    Feed sut("outlet1_active_power_W,outlet1_apparent_power_VA");
    auto const active = svid(PointKind::Socket, 1, key::activeEnergy);
    auto const apparent = svid(PointKind::Socket, 1, key::apparentEnergy);

    auto row = sut->convert({0, {1000.0, 2000.0}});
    expectReading(0.0, eStatus_NoError, 0, readingOf(row, active));
    row = sut->convert({hour, {2000.0, 2000.0}});
    expectReading(1500.0, eStatus_NoError, hour, readingOf(row, active));
    expectReading(2000.0, eStatus_NoError, hour, readingOf(row, apparent));
}

TEST(RecordingFeedTest, EnergyWithoutPower_IsLostAndBridgesTheGapLater) {
    Feed sut("outlet1_active_power_W");
    auto const energy = svid(PointKind::Socket, 1, key::activeEnergy);

    sut->convert({0, {1000.0}});
    sut->convert({hour, {1000.0}});
    auto row = sut->convert({2 * hour, {std::nullopt}});
    expectReading(1000.0, eStatus_Lost, 2 * hour, readingOf(row, energy));
    row = sut->convert({3 * hour, {1000.0}});
    expectReading(3000.0, eStatus_NoError, 3 * hour, readingOf(row, energy));
}

TEST(RecordingFeedTest, RecordedCounter_IsUsedInsteadOfAnIntegral) {
    Feed sut("total_active_power_W,total_apparent_power_VA,total_active_energy_Wh");
    auto const active = svid(PointKind::Inlet, 2, key::activeEnergy);

    sut->convert({0, {1000.0, 1000.0, 43632670.0}});
    auto const row = sut->convert({hour, {1000.0, 1000.0, 43638050.0}});

    EXPECT_EQ(4U, svidsOf(*sut).size());
    ASSERT_EQ(4U, row.readings.size());
    expectReading(43638050.0, eStatus_NoError, hour, readingOf(row, active));
    expectReading(1000.0, eStatus_NoError, hour,
                  readingOf(row, svid(PointKind::Inlet, 2, key::apparentEnergy)));
}

TEST(RecordingFeedTest, RecordedCounterInAnotherFile_IsUsedToo) {
    test::TempFile const power("timestamp_utc,total_active_power_W\n2023-06-09T07:34:38Z,1\n");
    test::TempFile const counter("timestamp_utc,total_active_energy_Wh\n2023-06-09T07:34:38Z,1\n");
    auto const recordings = Recordings::read({power.path(), counter.path()});

    RecordingFeed const sut(recordings.all()[0], recordings, {});

    EXPECT_EQ((std::set<long long>{svid(PointKind::Inlet, 2, key::activePower)}), svidsOf(sut));
}

TEST(RecordingFeedTest, CircuitWithAllItsOutlets_HasTheirSummedPower) {
    Feed sut("outlet3_active_power_W,outlet6_active_power_W,outlet1_active_power_W");
    auto const circuit = svid(PointKind::Circuit, 1, key::activePower);

    auto row = sut->convert({1000, {40.0, 2000.5, 7.0}});
    expectReading(2040.5, eStatus_NoError, 1000, readingOf(row, circuit));
    row = sut->convert({2000, {40.0, std::nullopt, 7.0}});
    expectReading(2040.5, eStatus_Lost, 2000, readingOf(row, circuit));
    EXPECT_FALSE(sut->feeds({PointKind::Circuit, 2})) << "outlets 2, 4 and 5 are missing";
    EXPECT_TRUE(sut->feeds({PointKind::Circuit, 1}));
}

TEST(RecordingFeedTest, CircuitWithAnOutletNeverRead_IsLostWithThePowerOfTheOthers) {
    Feed sut("outlet3_active_power_W,outlet6_active_power_W");
    auto const circuit = svid(PointKind::Circuit, 1, key::activePower);

    auto row = sut->convert({1000, {40.0, std::nullopt}});
    expectReading(40.0, eStatus_Lost, 1000, readingOf(row, circuit));
    row = sut->convert({2000, {50.0, std::nullopt}});
    expectReading(50.0, eStatus_Lost, 2000, readingOf(row, circuit));
    row = sut->convert({3000, {50.0, 1.5}});
    expectReading(51.5, eStatus_NoError, 3000, readingOf(row, circuit));
    row = sut->convert({4000, {60.0, std::nullopt}});
    expectReading(61.5, eStatus_Lost, 4000, readingOf(row, circuit));
}

TEST(RecordingFeedTest, GroupedOutlets_HaveTheirSummedPower) {
    Feed sut("outlet1_active_power_W,outlet2_active_power_W,outlet3_active_power_W");

    auto const row = sut->convert({1000, {1.0, 2.0, 4.5}});

    EXPECT_TRUE(sut->feeds(socketGroup));
    expectReading(7.5, eStatus_NoError, 1000, readingOf(row, svid(PointKind::Group, 1, key::activePower)));
}

TEST(RecordingFeedTest, SensorWithBothReadings_HasADewPoint) {
    Feed sut("sensor1_temperature_degC,sensor1_relative_humidity_percent");
    auto const dew = svid(PointKind::Sensor, 1, key::dewPoint);

    auto row = sut->convert({1000, {20.0, 50.0}});
    double const number = dewPoint(20.0, 50.0).value();
    expectReading(number, eStatus_NoError, 1000, readingOf(row, dew));
    row = sut->convert({2000, {20.0, std::nullopt}});
    expectReading(number, eStatus_Lost, 2000, readingOf(row, dew));
    row = sut->convert({3000, {20.0, 0.0}});
    expectReading(number, eStatus_Lost, 3000, readingOf(row, dew));
}

TEST(RecordingFeedTest, SensorWithOneReading_HasNoDewPoint) {
    Feed sut("sensor1_temperature_degC");
    EXPECT_EQ((std::set<long long>{svid(PointKind::Sensor, 1, key::temperature)}), svidsOf(*sut));
}

TEST(RecordingFeedTest, LimitedColumn_TakesTheStateOfItsLimit) {
    LimitSet limits;
    limits.add("outlet6_active_power_W:high-warning=2000,high-alarm=2400,hysteresis=10", {"--limit"});
    Feed sut("outlet6_active_power_W", limits);
    auto const power = svid(PointKind::Socket, 6, key::activePower);

    auto row = sut->convert({1000, {1999.0}});
    expectReading(1999.0, eStatus_NoError, 1000, readingOf(row, power));
    EXPECT_TRUE(row.crossings.empty());
    row = sut->convert({2000, {2100.0}});
    expectReading(2100.0, eStatus_HighWarning, 2000, readingOf(row, power));
    ASSERT_EQ(1U, row.crossings.size());
    EXPECT_EQ("outlet6_active_power_W", row.crossings[0].column);
    EXPECT_EQ(eStatus_NoError, row.crossings[0].before);
    expectReading(2100.0, eStatus_HighWarning, 2000, row.crossings[0].after);
    row = sut->convert({3000, {2200.0}});
    EXPECT_TRUE(row.crossings.empty()) << "the state is the same";
    row = sut->convert({4000, {100.0}});
    ASSERT_EQ(1U, row.crossings.size());
    EXPECT_EQ(eStatus_HighWarning, row.crossings[0].before);
    expectReading(100.0, eStatus_NoError, 4000, row.crossings[0].after);
}

TEST(RecordingFeedTest, LimitedColumnWithoutReading_IsLostAndComesBack) {
    LimitSet limits;
    limits.add("outlet6_active_power_W:high-alarm=2400", {"--limit"});
    Feed sut("outlet6_active_power_W", limits);

    sut->convert({1000, {2500.0}});
    auto row = sut->convert({2000, {std::nullopt}});
    ASSERT_EQ(1U, row.crossings.size());
    EXPECT_EQ(eStatus_HighAlarm, row.crossings[0].before);
    EXPECT_TRUE(row.crossings[0].isLoss);
    expectReading(2500.0, eStatus_Lost, 2000, row.crossings[0].after);
    row = sut->convert({3000, {2450.0}});
    ASSERT_EQ(1U, row.crossings.size());
    EXPECT_EQ(eStatus_Lost, row.crossings[0].before);
    EXPECT_TRUE(row.crossings[0].isLoss) << "the alarm goes on";
    expectReading(2450.0, eStatus_HighAlarm, 3000, row.crossings[0].after);
}

TEST(RecordingFeedTest, LimitCrossedWithoutReadings_IsReportedWithTheNextReading) {
    LimitSet limits;
    limits.add("outlet6_active_power_W:high-alarm=2400", {"--limit"});
    Feed sut("outlet6_active_power_W", limits);

    sut->convert({1000, {100.0}});
    EXPECT_TRUE(sut->convert({2000, {std::nullopt}}).crossings.at(0).isLoss);
    auto const row = sut->convert({3000, {2450.0}});
    ASSERT_EQ(1U, row.crossings.size());
    EXPECT_FALSE(row.crossings[0].isLoss);
}

TEST(RecordingFeedTest, ColumnWithoutLimit_ReportsNoCrossing) {
    LimitSet limits;
    limits.add("outlet6_active_power_W:high-alarm=1", {"--limit"});
    Feed sut("outlet6_current_A,outlet6_voltage_V", limits);

    EXPECT_TRUE(sut->convert({1000, {std::nullopt, 5.0}}).crossings.empty());
}

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/CaptureLog.h"

#include "inspect/capture/CaptureWriter.h"

#include "tests/inspect/capture/CaptureFixture.h"
#include "tests/inspect/capture/CapturedUnit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qel::inspect {

namespace {

using test::unitWith;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t start = 1'700'000'000'000;
constexpr std::uint32_t socketVoltage = 5;

class CaptureLogTest : public test::CaptureTest {
protected:
    struct Sample {
        std::uint64_t time;
        Image image;
    };

    /// "1000 value state unit1/inlet1/circuit1/socket1#1"
    std::vector<std::string> eventsOf(std::vector<Sample> const& samples,
                                      std::vector<std::string> const& names = {}, std::uint64_t from = start,
                                      std::uint64_t until = start + 1000000) {
        std::filesystem::remove(path());
        CaptureWriter writer(path(), start);
        for (auto const& sample : samples) {
            writer.append(sample.time, sample.image);
        }
        std::vector<ValuePattern> patterns(names.begin(), names.end());
        std::vector<std::string> events;
        CaptureLog(patterns).read(CaptureTimeline(path()), from, until, [&](CaptureEvent const& event) {
            auto text = std::to_string(event.time - start) + ' ' + eventName(event);
            if (event.difference) {
                auto const& key = event.difference->key;
                text += ' ' + event.difference->path + (key ? '#' + std::to_string(*key) : "");
            }
            events.push_back(text);
        });
        return events;
    }

    Image const well_ = unitWith(socketVoltage, 230.0);
    Image const alarm_ = unitWith(socketVoltage, 260.0, eStatus_HighAlarm);
};

} // namespace

TEST_F(CaptureLogTest, StateOfAValue_IsAnEvent) {
    EXPECT_THAT(eventsOf({{0, well_}, {1000, alarm_}, {2000, alarm_}, {3000, well_}}),
                ElementsAre("1000 value state unit1/inlet1/circuit1/socket1#1",
                            "3000 value state unit1/inlet1/circuit1/socket1#1"));
}

TEST_F(CaptureLogTest, NumbersAndTimes_AreNoEvents) {
    EXPECT_THAT(eventsOf({{0, well_},
                          {1000, unitWith(socketVoltage, 231.0, eStatus_NoError, start)},
                          {2000, unitWith(socketVoltage, 232.0, eStatus_NoError, start + 1)}}),
                IsEmpty());
}

TEST_F(CaptureLogTest, PointsAndGlobalState_AreEvents) {
    auto const without = test::capturedUnit([](shm::record::Region& region) {
        region.points[5].next = shm::NO_POSITION; // socket 4 is not in the list any more
        region.root.state = eStatus_ChildAlarm;
    });
    EXPECT_THAT(eventsOf({{0, test::capturedUnit()}, {1000, without}}),
                ElementsAre("1000 global state ", "1000 point removed unit1/inlet1/circuit1/socket4"));
}

TEST_F(CaptureLogTest, Names_SelectValuesAndPoints) {
    std::vector<Sample> const samples{{0, well_}, {1000, alarm_}};
    EXPECT_THAT(eventsOf(samples, {"unit1/**:voltage"}), testing::SizeIs(1));
    EXPECT_THAT(eventsOf(samples, {"unit1/**:active-power"}), IsEmpty());
    EXPECT_THAT(eventsOf(samples, {"unit1/inlet1/circuit1/socket1"}), testing::SizeIs(1));
    EXPECT_THAT(eventsOf(samples, {"unit1/inlet1/circuit1/socket2", "unit2"}), IsEmpty());
}

TEST_F(CaptureLogTest, Unmatched_IsTheFirstPatternThatSelectsNothing) {
    eventsOf({{0, test::wipedUnit()}, {1000, well_}, {2000, well_}});
    CaptureTimeline const timeline(path());
    auto const unmatched = [&](std::vector<std::string> const& names, std::uint64_t from,
                               std::uint64_t until) {
        return CaptureLog({names.begin(), names.end()}).unmatched(timeline, start + from, start + until);
    };
    EXPECT_EQ(std::nullopt, unmatched({}, 0, 2000));
    EXPECT_EQ(std::nullopt, unmatched({"unit1", "**/socket1:voltage"}, 0, 2000));
    EXPECT_EQ(1U, unmatched({"unit1", "unit7", "unit1:humidity"}, 0, 2000));
    EXPECT_EQ(0U, unmatched({"unit1:humidity"}, 0, 2000)) << "the point has no such value";
    EXPECT_EQ(0U, unmatched({"unit1"}, 0, 999)) << "the region was not active yet";
    EXPECT_EQ(std::nullopt, unmatched({"unit1"}, 0, 1000));
}

TEST_F(CaptureLogTest, RegionThatGoesAndComes_IsARestart) {
    EXPECT_THAT(
        eventsOf({{0, well_}, {1000, test::wipedUnit()}, {2000, test::wipedUnit()}, {3000, alarm_}}),
        ElementsAre("1000 inactive", "3000 restart", "3000 value state unit1/inlet1/circuit1/socket1#1"));
}

TEST_F(CaptureLogTest, RegionThatIsNotActiveYet_IsNoEvent) {
    EXPECT_THAT(eventsOf({{0, test::wipedUnit()}, {1000, well_}, {2000, alarm_}}),
                ElementsAre("2000 value state unit1/inlet1/circuit1/socket1#1"));
}

TEST_F(CaptureLogTest, TimesThatVanish_AreARestartBetweenTwoSamples) {
    auto const fresh = unitWith(socketVoltage, 0.0, eStatus_ExpectedValue, 0);
    EXPECT_THAT(eventsOf({{0, well_}, {1000, fresh}}),
                ElementsAre("1000 restart", "1000 value state unit1/inlet1/circuit1/socket1#1"));
    EXPECT_THAT(eventsOf({{0, fresh}, {1000, well_}}), testing::SizeIs(1)) << "a first delivery is none";
}

TEST_F(CaptureLogTest, LongTimeWithoutASample_IsAGap) {
    EXPECT_THAT(eventsOf({{0, well_}, {1000, well_}, {2000, well_}, {9000, well_}, {10000, well_}}),
                ElementsAre("9000 gap"));
}

TEST_F(CaptureLogTest, Range_LeavesEventsOut) {
    std::vector<Sample> const samples{{0, well_}, {1000, alarm_}, {2000, well_}, {3000, alarm_}};
    EXPECT_THAT(eventsOf(samples, {}, start + 1500, start + 2500),
                ElementsAre("2000 value state unit1/inlet1/circuit1/socket1#1"));
}

} // namespace qel::inspect

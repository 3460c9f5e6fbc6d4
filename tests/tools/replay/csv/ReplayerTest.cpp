// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/Replayer.h"

#include "tests/support/TempFile.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace qel::tools {

namespace {

// Each step as the recording's index and the ms at which it was due.
using Steps = std::vector<std::pair<std::size_t, std::uint64_t>>;

Steps stepsOf(Replayer& sut, std::size_t atMost = 100) {
    Steps steps;
    while (auto const due = sut.due()) {
        if (steps.size() == atMost) {
            break;
        }
        steps.emplace_back(sut.next().recording, *due);
    }
    return steps;
}

class ReplayerTest : public testing::Test {
protected:
    // Of different years: each starts at its own first row. Steps 1 s and 2 s.
    test::TempFile const fast_{"timestamp_utc,inlet1_voltage_V\n"
                               "2023-06-09T07:34:30Z,1\n2023-06-09T07:34:31Z,2\n2023-06-09T07:34:32Z,3\n"};
    test::TempFile const slow_{"timestamp_utc,outlet1_voltage_V\n"
                               "2015-01-01T00:00:00Z,1\n2015-01-01T00:00:02Z,2\n2015-01-01T00:00:04Z,3\n"};
    Recordings const recordings_ = Recordings::read({fast_.path(), slow_.path()});
};

} // namespace

TEST_F(ReplayerTest, Rows_AreMergedByTheClocksOfTheirRecordings) {
    Replayer sut(recordings_, {});

    EXPECT_EQ((Steps{{0, 0}, {1, 0}, {0, 1000}, {0, 2000}, {1, 2000}, {1, 4000}}), stepsOf(sut));
    EXPECT_EQ(std::nullopt, sut.due());
}

TEST_F(ReplayerTest, StartTimes_AreThoseOfTheFirstRows) {
    Replayer::Options options;
    options.firstRows = {2};
    Replayer const sut(recordings_, options);

    EXPECT_EQ(recordings_.tables()[0].time(2), sut.startTime(0));
    EXPECT_EQ(recordings_.tables()[1].time(0), sut.startTime(1));
}

TEST_F(ReplayerTest, FirstRows_ShiftTheirRecordingsOnly) {
    Replayer::Options options;
    options.firstRows = {1, 2};
    Replayer sut(recordings_, options);

    EXPECT_EQ((Steps{{0, 0}, {1, 0}, {0, 1000}}), stepsOf(sut));
}

TEST_F(ReplayerTest, RowLimit_CountsAllRecordings) {
    Replayer::Options options;
    options.rowLimit = 4;
    Replayer sut(recordings_, options);

    EXPECT_EQ((Steps{{0, 0}, {1, 0}, {0, 1000}, {0, 2000}}), stepsOf(sut));
}

TEST_F(ReplayerTest, RowLimitBeyondTheEnd_ChangesNothing) {
    Replayer::Options options;
    options.rowLimit = 7;
    Replayer sut(recordings_, options);

    EXPECT_EQ(6U, stepsOf(sut).size());
}

TEST_F(ReplayerTest, EndlessReplay_RepeatsEachRecordingByItself) {
    Replayer::Options options;
    options.isEndless = true;
    Replayer sut(recordings_, options);

    EXPECT_EQ(
        (Steps{{0, 0}, {1, 0}, {0, 1000}, {0, 2000}, {1, 2000}, {0, 3000}, {0, 4000}, {1, 4000}, {0, 5000}}),
        stepsOf(sut, 9));
}

TEST_F(ReplayerTest, EndlessReplayWithRowLimit_Ends) {
    Replayer::Options options;
    options.isEndless = true;
    options.rowLimit = 20;
    Replayer sut(recordings_, options);

    EXPECT_EQ(20U, stepsOf(sut).size());
}

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/Rows.h"

#include "tests/support/TempFile.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace qel::tools {

namespace {

constexpr std::uint64_t t0 = 1686296070000; // 2023-06-09T07:34:30Z

Recording recording() {
    test::TempFile const file("timestamp_utc,inlet1_voltage_V,inlet1_active_energy_Wh\n"
                              "2023-06-09T07:34:30Z,230,100\n"
                              "2023-06-09T07:34:32Z,,110\n"
                              "2023-06-09T07:34:35Z,231,\n");
    return Recording::read(file.path());
}

using Cells = std::vector<std::optional<double>>;

// Each step as the recording's index and the ms at which it was due.
using Steps = std::vector<std::pair<std::size_t, std::uint64_t>>;

Steps stepsOf(MergedRows& sut, std::size_t atMost = 100) {
    Steps steps;
    while (auto const due = sut.due()) {
        if (steps.size() == atMost) {
            break;
        }
        steps.emplace_back(sut.next().recording, *due);
    }
    return steps;
}

class MergedRowsTest : public testing::Test {
protected:
    // Of different years: each starts at its own first row. Steps 1 s and 2 s.
    test::TempFile const fast_{"timestamp_utc,inlet1_voltage_V\n"
                               "2023-06-09T07:34:30Z,1\n2023-06-09T07:34:31Z,2\n2023-06-09T07:34:32Z,3\n"};
    test::TempFile const slow_{"timestamp_utc,outlet1_voltage_V\n"
                               "2015-01-01T00:00:00Z,1\n2015-01-01T00:00:02Z,2\n2015-01-01T00:00:04Z,3\n"};
    Recordings const recordings_ = Recordings::read({fast_.path(), slow_.path()});
};

} // namespace

TEST(RecordingRowsTest, Rows_ComeWithTheirTimesAndCells) {
    auto const rows = recording();
    RecordingRows sut(rows, 0, false);

    EXPECT_EQ(t0, sut.startTime());
    EXPECT_EQ(0U, sut.due());
    auto row = sut.next();
    EXPECT_EQ(t0, row.time);
    EXPECT_EQ((Cells{230.0, 100.0}), row.cells);
    EXPECT_EQ(2000U, sut.due());
    row = sut.next();
    EXPECT_EQ(t0 + 2000, row.time);
    EXPECT_EQ((Cells{std::nullopt, 110.0}), row.cells);
    EXPECT_EQ(5000U, sut.due());
    row = sut.next();
    EXPECT_EQ((Cells{231.0, std::nullopt}), row.cells);
    EXPECT_EQ(std::nullopt, sut.due());
}

TEST(RecordingRowsTest, FirstRow_StartsTheClock) {
    auto const rows = recording();
    RecordingRows sut(rows, 1, false);

    EXPECT_EQ(t0 + 2000, sut.startTime());
    EXPECT_EQ(0U, sut.due());
    EXPECT_EQ(t0 + 2000, sut.next().time);
    EXPECT_EQ(3000U, sut.due());
    sut.next();
    EXPECT_EQ(std::nullopt, sut.due());
}

// The recording's last step is 3 s, so each pass is 5 s + 3 s long.
TEST(RecordingRowsTest, Repetition_GoesOnInTime) {
    auto const rows = recording();
    RecordingRows sut(rows, 0, true);
    std::vector<std::uint64_t> times;
    std::vector<std::uint64_t> dues;

    for (int count = 0; count < 8; ++count) {
        dues.push_back(sut.due().value());
        times.push_back(sut.next().time - t0);
    }

    EXPECT_EQ((std::vector<std::uint64_t>{0, 2000, 5000, 8000, 10000, 13000, 16000, 18000}), times);
    EXPECT_EQ(times, dues);
}

// The counter counts 10 Wh in each pass; its last known number is 110, not the empty cell.
TEST(RecordingRowsTest, Repetition_LetsCountersGoOnAndNothingElse) {
    auto const rows = recording();
    RecordingRows sut(rows, 0, true);
    std::vector<std::optional<double>> counters;
    std::vector<std::optional<double>> voltages;

    for (int count = 0; count < 8; ++count) {
        auto const row = sut.next();
        voltages.push_back(row.cells[0]);
        counters.push_back(row.cells[1]);
    }

    auto const none = std::nullopt;
    EXPECT_EQ((Cells{100.0, 110.0, none, 110.0, 120.0, none, 120.0, 130.0}), counters);
    EXPECT_EQ((Cells{230.0, none, 231.0, 230.0, none, 231.0, 230.0, none}), voltages);
}

TEST(RecordingRowsTest, RepetitionFromALaterRow_StartsOverThere) {
    auto const rows = recording();
    RecordingRows sut(rows, 1, true);
    std::vector<std::uint64_t> dues;
    for (int count = 0; count < 4; ++count) {
        dues.push_back(sut.due().value());
        sut.next();
    }
    EXPECT_EQ((std::vector<std::uint64_t>{0, 3000, 6000, 9000}), dues);
}

TEST(RecordingRowsTest, SingleRow_IsRepeatedEverySecond) {
    test::TempFile const file("timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:30Z,230\n");
    auto const rows = Recording::read(file.path());
    RecordingRows sut(rows, 0, true);

    EXPECT_EQ(t0, sut.next().time);
    EXPECT_EQ(t0 + 1000, sut.next().time);
    EXPECT_EQ(2000U, sut.due());
}

TEST_F(MergedRowsTest, Rows_AreMergedByTheClocksOfTheirRecordings) {
    MergedRows sut(recordings_, {});

    EXPECT_EQ((Steps{{0, 0}, {1, 0}, {0, 1000}, {0, 2000}, {1, 2000}, {1, 4000}}), stepsOf(sut));
    EXPECT_EQ(std::nullopt, sut.due());
}

TEST_F(MergedRowsTest, StartTimes_AreThoseOfTheFirstRows) {
    RowSelection selection;
    selection.firstRows = {2};
    MergedRows const sut(recordings_, selection);

    EXPECT_EQ(recordings_.all()[0].time(2), sut.startTime(0));
    EXPECT_EQ(recordings_.all()[1].time(0), sut.startTime(1));
}

TEST_F(MergedRowsTest, FirstRows_ShiftTheirRecordingsOnly) {
    RowSelection selection;
    selection.firstRows = {1, 2};
    MergedRows sut(recordings_, selection);

    EXPECT_EQ((Steps{{0, 0}, {1, 0}, {0, 1000}}), stepsOf(sut));
}

TEST_F(MergedRowsTest, RowLimit_CountsAllRecordings) {
    RowSelection selection;
    selection.rowLimit = 4;
    MergedRows sut(recordings_, selection);

    EXPECT_EQ((Steps{{0, 0}, {1, 0}, {0, 1000}, {0, 2000}}), stepsOf(sut));
}

TEST_F(MergedRowsTest, RowLimitBeyondTheEnd_ChangesNothing) {
    RowSelection selection;
    selection.rowLimit = 7;
    MergedRows sut(recordings_, selection);

    EXPECT_EQ(6U, stepsOf(sut).size());
}

TEST_F(MergedRowsTest, EndlessReplay_RepeatsEachRecordingByItself) {
    RowSelection selection;
    selection.isEndless = true;
    MergedRows sut(recordings_, selection);

    EXPECT_EQ(
        (Steps{{0, 0}, {1, 0}, {0, 1000}, {0, 2000}, {1, 2000}, {0, 3000}, {0, 4000}, {1, 4000}, {0, 5000}}),
        stepsOf(sut, 9));
}

TEST_F(MergedRowsTest, EndlessReplayWithRowLimit_Ends) {
    RowSelection selection;
    selection.isEndless = true;
    selection.rowLimit = 20;
    MergedRows sut(recordings_, selection);

    EXPECT_EQ(20U, stepsOf(sut).size());
}

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/RowSource.h"

#include "tests/support/TempFile.h"

#include <gtest/gtest.h>

namespace qel::tools {

namespace {

constexpr std::uint64_t t0 = 1686296070000; // 2023-06-09T07:34:30Z

CsvTable table() {
    test::TempFile const file("timestamp_utc,inlet1_voltage_V,inlet1_active_energy_Wh\n"
                              "2023-06-09T07:34:30Z,230,100\n"
                              "2023-06-09T07:34:32Z,,110\n"
                              "2023-06-09T07:34:35Z,231,\n");
    return CsvTable::read(file.path());
}

using Cells = std::vector<std::optional<double>>;

} // namespace

TEST(RowSourceTest, Rows_ComeWithTheirTimesAndCells) {
    auto const rows = table();
    RowSource sut(rows, 0, false);

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

TEST(RowSourceTest, FirstRow_StartsTheClock) {
    auto const rows = table();
    RowSource sut(rows, 1, false);

    EXPECT_EQ(t0 + 2000, sut.startTime());
    EXPECT_EQ(0U, sut.due());
    EXPECT_EQ(t0 + 2000, sut.next().time);
    EXPECT_EQ(3000U, sut.due());
    sut.next();
    EXPECT_EQ(std::nullopt, sut.due());
}

// The recording's last step is 3 s, so each pass is 5 s + 3 s long.
TEST(RowSourceTest, Repetition_GoesOnInTime) {
    auto const rows = table();
    RowSource sut(rows, 0, true);
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
TEST(RowSourceTest, Repetition_LetsCountersGoOnAndNothingElse) {
    auto const rows = table();
    RowSource sut(rows, 0, true);
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

TEST(RowSourceTest, RepetitionFromALaterRow_StartsOverThere) {
    auto const rows = table();
    RowSource sut(rows, 1, true);
    std::vector<std::uint64_t> dues;
    for (int count = 0; count < 4; ++count) {
        dues.push_back(sut.due().value());
        sut.next();
    }
    EXPECT_EQ((std::vector<std::uint64_t>{0, 3000, 6000, 9000}), dues);
}

TEST(RowSourceTest, SingleRow_IsRepeatedEverySecond) {
    test::TempFile const file("timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:30Z,230\n");
    auto const rows = CsvTable::read(file.path());
    RowSource sut(rows, 0, true);

    EXPECT_EQ(t0, sut.next().time);
    EXPECT_EQ(t0 + 1000, sut.next().time);
    EXPECT_EQ(2000U, sut.due());
}

} // namespace qel::tools

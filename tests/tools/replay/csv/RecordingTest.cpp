// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/Recording.h"

#include "format/ValueKeys.h"
#include "tests/support/TempFile.h"
#include "tests/tools/replay/InputFailure.h"
#include "tests/tools/replay/ShippedRecordings.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace qel::tools {

namespace {

namespace key = shm::key;

Recording recordingOf(std::string const& text) {
    test::TempFile const file(text);
    return Recording::read(file.path());
}

/// What is said about a file with this text, after the file's name.
std::string failureOf(std::string const& text) {
    test::TempFile const file(text);
    auto const message = test::inputFailure([&] { Recording::read(file.path()); });
    return message.substr(message.find(file.path()) == 0 ? file.path().size() : 0);
}

std::string const header = "timestamp_utc,inlet1_voltage_V,inlet1_current_A\n";

} // namespace

TEST(RecordingTest, Read_TakesTimesAndNumbers) {
    auto const sut =
        recordingOf(header + "2023-06-09T07:34:38Z,249.58,-1.5e1\n2023-06-09T07:34:39.5Z,250,0\n");

    ASSERT_EQ(2U, sut.columns().size());
    EXPECT_EQ("inlet1_voltage_V", sut.columns()[0].name);
    EXPECT_EQ("inlet1_current_A", sut.columns()[1].name);
    ASSERT_EQ(2U, sut.rowCount());
    EXPECT_EQ(1686296078000U, sut.time(0));
    EXPECT_EQ(1686296079500U, sut.time(1));
    EXPECT_EQ(249.58, sut.cell(0, 0));
    EXPECT_EQ(-15.0, sut.cell(0, 1));
    EXPECT_EQ(250.0, sut.cell(1, 0));
    EXPECT_EQ(0.0, sut.cell(1, 1));
}

TEST(RecordingTest, Read_KeepsEmptyCellsEmpty) {
    auto const sut = recordingOf(header + "2023-06-09T07:34:38Z,,1\n2023-06-09T07:34:39Z,2,\n");

    EXPECT_EQ(std::nullopt, sut.cell(0, 0));
    EXPECT_EQ(1.0, sut.cell(0, 1));
    EXPECT_EQ(2.0, sut.cell(1, 0));
    EXPECT_EQ(std::nullopt, sut.cell(1, 1));
}

TEST(RecordingTest, Find_GivesThePositionOfAColumn) {
    auto const sut = recordingOf(header + "2023-06-09T07:34:38Z,1,2\n");

    EXPECT_EQ(1U, sut.find({PointKind::Inlet, 1}, key::current));
    EXPECT_EQ(std::nullopt, sut.find({PointKind::Inlet, 2}, key::current));
    EXPECT_EQ(std::nullopt, sut.find({PointKind::Inlet, 1}, key::activePower));
}

struct ShippedRecording {
    char const* path;
    std::size_t rows;
    std::size_t columns;
    std::size_t emptyCells;
    char const* first;
    char const* last;
};

std::ostream& operator<<(std::ostream& out, ShippedRecording const& file) {
    return out << file.path;
}

class ShippedRecordingTest : public testing::TestWithParam<ShippedRecording> {};

// The numbers are those that data/README.md gives for each file.
TEST_P(ShippedRecordingTest, Read_TakesAllOfIt) {
    auto const sut = Recording::read(GetParam().path);

    EXPECT_EQ(GetParam().rows, sut.rowCount());
    EXPECT_EQ(GetParam().columns, sut.columns().size());
    std::size_t emptyCells = 0;
    for (std::size_t row = 0; row < sut.rowCount(); ++row) {
        for (std::size_t column = 0; column < sut.columns().size(); ++column) {
            emptyCells += sut.cell(row, column) ? 0U : 1U;
        }
    }
    EXPECT_EQ(GetParam().emptyCells, emptyCells);
    auto const edges = recordingOf("timestamp_utc,frequency_Hz\n" + std::string(GetParam().first) + ",1\n" +
                                   GetParam().last + ",1\n");
    EXPECT_EQ(edges.time(0), sut.time(0));
    EXPECT_EQ(edges.time(1), sut.time(sut.rowCount() - 1));
}

INSTANTIATE_TEST_SUITE_P(All, ShippedRecordingTest,
                         testing::Values(ShippedRecording{test::outletsFile, 8422, 77, 28,
                                                          "2023-06-09T07:34:38Z", "2023-06-09T09:54:59Z"},
                                         ShippedRecording{test::threePhaseFile, 2302, 30,
                                                          std::size_t{15} * 1527, "2024-12-05T17:44:13Z",
                                                          "2024-12-08T23:58:10Z"},
                                         ShippedRecording{test::environmentFile, 10808, 2, 0,
                                                          "2015-02-02T13:19:00Z", "2015-02-10T08:33:00Z"}));

TEST(RecordingTest, ByteOrderMarkAndEmptyLinesAtTheEnd_AreIgnored) {
    auto const sut = recordingOf("\xEF\xBB\xBF" + header + "2023-06-09T07:34:38Z,1,2\r\n\r\n\n");
    ASSERT_EQ(1U, sut.rowCount());
    EXPECT_EQ("inlet1_voltage_V", sut.columns()[0].name);
    EXPECT_EQ(2.0, sut.cell(0, 1));
}

TEST(RecordingTest, EmptyLineBetweenRows_IsRefused) {
    EXPECT_EQ(":3: the line is empty; expected rows without empty lines between them",
              failureOf(header + "2023-06-09T07:34:38Z,1,2\n\n2023-06-09T07:34:39Z,1,2\n"));
    EXPECT_EQ(":2: the line is empty; expected rows without empty lines between them",
              failureOf(header + "\n2023-06-09T07:34:38Z,1,2\n"));
}

TEST(RecordingTest, EmptyFile_IsRefused) {
    EXPECT_EQ(": the file is empty; expected a header line that starts with timestamp_utc", failureOf(""));
}

TEST(RecordingTest, FileWithoutRows_IsRefused) {
    EXPECT_EQ(":2: the file ends after its header; expected at least one row", failureOf(header));
}

TEST(RecordingTest, OtherFirstColumn_IsRefused) {
    EXPECT_EQ(":1: the first column is \"inlet1_voltage_V\"; expected \"timestamp_utc\"",
              failureOf("inlet1_voltage_V,timestamp_utc\n"));
    EXPECT_EQ(":1: the first column is \"\"; expected \"timestamp_utc\"", failureOf("\n" + header));
}

TEST(RecordingTest, HeaderWithoutValues_IsRefused) {
    EXPECT_EQ(":1: no column after the time; expected at least one column of readings",
              failureOf("timestamp_utc\n2023-06-09T07:34:38Z\n"));
}

TEST(RecordingTest, UnknownColumn_IsRefused) {
    EXPECT_EQ(":1: unknown column \"inlet1_charm\"; expected " + std::string(columnGrammar),
              failureOf("timestamp_utc,inlet1_charm\n"));
}

TEST(RecordingTest, ColumnThatIsThereTwice_IsRefused) {
    EXPECT_EQ(":1: inlet1_voltage_V: duplicate column; expected each column once",
              failureOf("timestamp_utc,inlet1_voltage_V,inlet1_current_A,inlet1_voltage_V\n"));
}

TEST(RecordingTest, RowOfWrongLength_IsRefused) {
    EXPECT_EQ(":2: the row has 2 cells; expected 3, as in the header",
              failureOf(header + "2023-06-09T07:34:38Z,1\n"));
    EXPECT_EQ(":3: the row has 4 cells; expected 3, as in the header",
              failureOf(header + "2023-06-09T07:34:38Z,1,2\n2023-06-09T07:34:39Z,1,2,3\n"));
}

class NoNumberTest : public testing::TestWithParam<char const*> {};

TEST_P(NoNumberTest, Cell_IsRefused) {
    std::string const cell = GetParam();
    EXPECT_EQ(":3: inlet1_current_A: \"" + cell +
                  "\" is not a number; expected a decimal number or an empty cell",
              failureOf(header + "2023-06-09T07:34:38Z,1,2\n2023-06-09T07:34:39Z,1,\"" + cell + "\"\n"));
}

INSTANTIATE_TEST_SUITE_P(Cells, NoNumberTest,
                         testing::Values("abc", "1,5", "0x10", "1.2.3", " 1", "1 ", "+1", "nan", "inf",
                                         "-inf", "1e999", "-", "1e", "--1"));

TEST(RecordingTest, TimeThatIsNoTime_IsRefused) {
    EXPECT_EQ(":2: timestamp_utc: \"2023-06-09 07:34:38\" is not a time; expected ISO 8601 UTC, such as "
              "2023-06-09T07:34:38Z",
              failureOf(header + "2023-06-09 07:34:38,1,2\n"));
    EXPECT_EQ(":2: timestamp_utc: \"\" is not a time; expected ISO 8601 UTC, such as 2023-06-09T07:34:38Z",
              failureOf(header + ",1,2\n"));
}

TEST(RecordingTest, TimeThatDoesNotRise_IsRefused) {
    EXPECT_EQ(":3: timestamp_utc: \"2023-06-09T07:34:37Z\" is not later than the previous row; expected a "
              "time after "
              "2023-06-09T07:34:38Z",
              failureOf(header + "2023-06-09T07:34:38Z,1,2\n2023-06-09T07:34:37Z,1,2\n"));
    EXPECT_EQ(":3: timestamp_utc: \"2023-06-09T07:34:38Z\" is not later than the previous row; expected a "
              "time after "
              "2023-06-09T07:34:38Z",
              failureOf(header + "2023-06-09T07:34:38Z,1,2\n2023-06-09T07:34:38Z,1,2\n"));
}

TEST(RecordingsTest, Read_KeepsTheOrderOfTheFiles) {
    test::TempFile const inlet(
        "timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:38Z,1\n2023-06-09T07:34:39Z,1\n");
    test::TempFile const outlet("timestamp_utc,outlet1_voltage_V\n2020-06-09T07:34:38Z,1\n");

    auto const sut = Recordings::read({inlet.path(), outlet.path()});

    ASSERT_EQ(2U, sut.all().size());
    EXPECT_EQ(inlet.path(), sut.all()[0].path());
    EXPECT_EQ(outlet.path(), sut.all()[1].path());
    EXPECT_EQ(3U, sut.rowCount());
    EXPECT_TRUE(sut.has({PointKind::Inlet, 1}, key::voltage));
    EXPECT_TRUE(sut.has({PointKind::Socket, 1}, key::voltage));
    EXPECT_FALSE(sut.has({PointKind::Socket, 2}, key::voltage));
}

TEST(RecordingsTest, ColumnInTwoFiles_IsRefused) {
    test::TempFile const first("timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:38Z,1\n");
    test::TempFile const second(
        "timestamp_utc,inlet1_current_A,inlet1_voltage_V\n2023-06-09T07:34:38Z,1,2\n");

    EXPECT_EQ(second.path() + ":1: inlet1_voltage_V: the column is also in " + first.path() +
                  "; expected each column in one file only",
              test::inputFailure([&] {
                  Recordings::read({first.path(), second.path()});
              }));
}

TEST(RecordingsTest, SameFileTwice_IsRefused) {
    test::TempFile const file("timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:38Z,1\n");

    EXPECT_EQ(file.path() + ":1: inlet1_voltage_V: the column is also in " + file.path() +
                  "; expected each column in one file only",
              test::inputFailure([&] {
                  Recordings::read({file.path(), file.path()});
              }));
}

} // namespace qel::tools

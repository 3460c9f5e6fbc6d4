// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/ExportCommand.h"

#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleCapture.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace qel::test {

namespace {

std::string const socket2 = "unit1/inlet1/circuit1/socket2";

std::string contentOf(std::string const& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

class ExportCommandTest : public testing::Test {
protected:
    static QelshmOutcome runExport(std::vector<std::string> const& arguments) {
        std::vector<std::string> words{"export", "--csv", "night.rec"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return runQelshm(words);
    }

    ImageFolder const folder_;
    std::string const file_ = sampleCapture();
};

} // namespace

TEST_F(ExportCommandTest, Wide_HasAColumnForEachValue) {
    auto const outcome = runExport({socket2 + ":active-power", "unit1/sensor1.1:humidity", "--to", "+2s"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ("timestamp_utc,unit1/inlet1/circuit1/socket2:active-power (W),unit1/sensor1.1:humidity (%)\n"
              "2023-11-14T22:13:20Z,1000,40\n"
              "2023-11-14T22:13:21Z,1050,40\n"
              "2023-11-14T22:13:22Z,1100,40\n",
              outcome.output);
}

TEST_F(ExportCommandTest, ValueNeverDeliveredOrNotThere_IsAnEmptyCell) {
    auto const outcome = runExport({socket2 + ":active-power", "unit1/inlet1/circuit1/socket3:voltage",
                                    "unit1/sensor1.1:humidity", "--from", "-6s"});
    EXPECT_EQ("timestamp_utc,unit1/inlet1/circuit1/socket2:active-power (W),"
              "unit1/inlet1/circuit1/socket3:voltage (V),unit1/sensor1.1:humidity (%)\n"
              "2023-11-14T22:14:14Z,1000,,40\n"
              "2023-11-14T22:14:15Z,,,\n"
              "2023-11-14T22:14:16Z,,,\n"
              "2023-11-14T22:14:17Z,,,\n"
              "2023-11-14T22:14:18Z,,,\n"
              "2023-11-14T22:14:19Z,,,\n"
              "2023-11-14T22:14:20Z,,,\n",
              outcome.output);
}

TEST_F(ExportCommandTest, Interval_TakesTheLastSampleUnlessThereIsAGap) {
    auto const outcome =
        runExport({socket2 + ":active-power", "--interval", "7.5", "--from", "+10s", "--to", "+52s"});
    EXPECT_EQ("timestamp_utc,unit1/inlet1/circuit1/socket2:active-power (W)\n"
              "2023-11-14T22:13:30Z,1500\n"
              "2023-11-14T22:13:37.500Z,1850\n"
              "2023-11-14T22:13:45Z,2250\n"
              "2023-11-14T22:13:52.500Z,1000\n"
              "2023-11-14T22:14:00Z,1000\n"
              "2023-11-14T22:14:07.500Z,\n", // the last sample is too old
              outcome.output);
}

TEST_F(ExportCommandTest, Long_HasARowForEachValueWithItsState) {
    auto const outcome = runExport({"--layout", "long", "--interval", "20", socket2 + ":active-power"});
    EXPECT_EQ("timestamp_utc,name,number,unit,state\n"
              "2023-11-14T22:13:20Z,unit1/inlet1/circuit1/socket2:active-power,1000,W,No Error\n"
              "2023-11-14T22:13:40Z,unit1/inlet1/circuit1/socket2:active-power,2000,W,High Alarm\n"
              "2023-11-14T22:14:00Z,unit1/inlet1/circuit1/socket2:active-power,1000,W,No Error\n"
              "2023-11-14T22:14:20Z,unit1/inlet1/circuit1/socket2:active-power,,W,Expected Value\n",
              outcome.output);
}

TEST_F(ExportCommandTest, Output_IsAWholeFile) {
    auto const text = runExport({socket2}).output;
    EXPECT_EQ(0, runExport({socket2, "-o", "power.csv"}).status);
    EXPECT_EQ(text, contentOf("power.csv"));
    EXPECT_EQ(1, runExport({"unit1/inlet9", "-o", "power.csv"}).status);
    EXPECT_EQ(text, contentOf("power.csv")) << "the old file stays";
    EXPECT_EQ(2, std::distance(std::filesystem::directory_iterator("."), {}));
}

TEST_F(ExportCommandTest, OutputThatIsTheCapture_IsRefused) {
    auto const before = contentOf(file_);
    std::filesystem::create_symlink(file_, "link.rec");
    for (std::string const output : {"night.rec", "./night.rec", "link.rec"}) {
        auto const outcome = runExport({socket2, "-o", output});
        EXPECT_EQ(1, outcome.status);
        EXPECT_EQ("qelshm: cannot write " + output +
                      ": it is the capture that is read; choose another file\n",
                  outcome.errors);
        EXPECT_EQ(before, contentOf(file_));
    }
}

TEST_F(ExportCommandTest, OutputToADash_IsStandardOutput) {
    auto const outcome = runExport({socket2, "-o", "-"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ(runExport({socket2}).output, outcome.output);
    EXPECT_FALSE(std::filesystem::exists("-"));
}

TEST_F(ExportCommandTest, IntervalThatIsNoNumber_IsWrongUsage) {
    for (auto const* const interval : {"nan", "inf", "0", "86401"}) {
        EXPECT_EQ(2, runExport({socket2, "--interval", interval}).status) << interval;
    }
}

TEST_F(ExportCommandTest, NameThatSelectsNothing_IsAnError) {
    auto const outcome = runExport({socket2, "unit1/inlet9:voltage"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_EQ("qelshm: there is no value \"unit1/inlet9:voltage\" in this part of night.rec\n",
              outcome.errors);
}

TEST_F(ExportCommandTest, WithoutNames_ExportsAllValues) {
    auto const text = runExport({"--to", "+0s"}).output;
    EXPECT_EQ(15, std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(text.find('\n')), ','));
}

TEST(CsvExportTest, TooManyRows_AreAnError) {
    ImageFolder const folder;
    inspect::CaptureTimeline const timeline(sampleCapture());
    tools::CsvExport const sut({}, {}, tools::CsvLayout::Wide, 1);
    std::string written;
    EXPECT_THROW(
        sut.write(timeline, {0, tools::CsvExport::mostRows}, [&](std::string_view text) { written += text; }),
        tools::TooManyRowsError);
    EXPECT_EQ("", written);
}

} // namespace qel::test

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/Options.h"

#include "tools/common/CommandLine.h"
#include "tools/replay/unit/Topology.h"

#include "tests/inspect/capture/CaptureFixture.h"
#include "tests/support/TempFile.h"
#include "tests/tools/replay/InputFailure.h"
#include "tests/tools/replay/csv/RecordingFile.h"

#include <gtest/gtest.h>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <filesystem>
#include <fstream>
#include <string>

namespace qel::tools {

namespace {

class ReplayOptionsTest : public testing::Test {
protected:
    Options optionsOf(std::vector<std::string> const& arguments) {
        CLI::App app("", "qel-replay");
        Options options;
        defineOptions(app, options);
        std::vector<char const*> argv{"qel-replay"};
        for (auto const& argument : arguments) {
            argv.push_back(argument.c_str());
        }
        app.parse(static_cast<int>(argv.size()), argv.data());
        return options;
    }

    std::string failureOf(std::vector<std::string> const& arguments) {
        return test::inputFailure([&] { readInput(optionsOf(arguments)); });
    }

    std::string recordFailureOf(std::vector<std::string> const& arguments) {
        return test::inputFailure([&] { readRecord(optionsOf(arguments)); });
    }

    /// Whole images, and in their midst one of a shorter source.
    static std::vector<inspect::Image> imagesWithAShortOne() {
        auto images = test::randomImages(4, 61);
        images.erase(images.begin() + 3);
        images.insert(images.begin() + 2, inspect::Image(nullptr, 0));
        return images;
    }

    test::TempFile const inlet_{
        "timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:30Z,1\n2023-06-09T07:34:31Z,2\n"};
    test::TempFile const sensor_{"timestamp_utc,sensor1_temperature_degC\n2023-06-09T07:34:30Z,1\n"};
};

} // namespace

TEST_F(ReplayOptionsTest, FilesAlone_GiveTheDefaults) {
    auto const sut = optionsOf({"a.csv", "b.csv"});
    EXPECT_EQ((std::vector<std::string>{"a.csv", "b.csv"}), sut.files);
    EXPECT_EQ(1.0, sut.speed);
    EXPECT_FALSE(sut.isEndless);
    EXPECT_FALSE(sut.isHeld);
    EXPECT_FALSE(sut.isQuiet);
    EXPECT_EQ(std::nullopt, sut.until);
    EXPECT_TRUE(sut.logLevel.empty());
}

TEST_F(ReplayOptionsTest, EveryOption_IsTaken) {
    auto const sut =
        optionsOf({"--speed", "2.5",           "--from",  "3,4", "--until",         "7",   "--loop",
                   "--hold",  "--quiet",       "--limit", "x",   "--limit",         "y",   "--limits",
                   "f",       "--plug-after",  "1",       "a",   "--unplug-after",  "2.5", "--plug-after",
                   "3",       "--group-after", "4",       "b",   "--ungroup-after", "5",   "--log-level",
                   "WARN"});
    EXPECT_EQ((std::vector<std::string>{"a", "b"}), sut.files) << "an option takes one argument only";
    EXPECT_EQ(2.5, sut.speed);
    EXPECT_EQ((std::vector<std::size_t>{3, 4}), sut.from);
    EXPECT_EQ(7U, sut.until);
    EXPECT_TRUE(sut.isEndless);
    EXPECT_TRUE(sut.isHeld);
    EXPECT_TRUE(sut.isQuiet);
    EXPECT_EQ((std::vector<std::string>{"x", "y"}), sut.limits);
    EXPECT_EQ((std::vector<std::string>{"f"}), sut.limitFiles);
    EXPECT_EQ((std::vector<double>{1.0, 3.0}), sut.plugAfter);
    EXPECT_EQ((std::vector<double>{2.5}), sut.unplugAfter);
    EXPECT_EQ((std::vector<double>{4.0}), sut.groupAfter);
    EXPECT_EQ((std::vector<double>{5.0}), sut.ungroupAfter);
    EXPECT_EQ("warn", sut.logLevel);
}

TEST_F(ReplayOptionsTest, WrongArguments_AreRefused) {
    std::vector<std::vector<std::string>> const wrong{
        {},
        {"--speed", "-1", "a"},
        {"--speed", "x", "a"},
        {"--until", "0", "a"},
        {"--until", "-1", "a"},
        {"--from", "0", "a"},
        {"--from", "x", "a"},
        {"--plug-after", "-1", "a"},
        {"--log-level", "loud", "a"},
        {"--unknown", "a"},
    };
    for (auto const& arguments : wrong) {
        EXPECT_THROW(optionsOf(arguments), CLI::ParseError);
    }
}

TEST_F(ReplayOptionsTest, ReadInput_TakesRowsAndRepetition) {
    auto const sut =
        readInput(optionsOf({"--from", "2", "--until", "9", "--loop", inlet_.path(), sensor_.path()}));
    EXPECT_EQ(2U, sut.recordings.tables().size());
    EXPECT_EQ((std::vector<std::size_t>{1}), sut.replay.firstRows);
    EXPECT_EQ(9U, sut.replay.rowLimit);
    EXPECT_TRUE(sut.replay.isEndless);
    EXPECT_EQ(std::nullopt, sut.schedule.due());
}

TEST_F(ReplayOptionsTest, ReadInput_TakesLimitsFromBothPlaces) {
    test::TempFile const limits("inlet1_voltage_V:high-alarm=253\n");
    auto const sut =
        readInput(optionsOf({"--limits", limits.path(), "--limit", "sensor1_temperature_degC:high-alarm=30",
                             inlet_.path(), sensor_.path()}));
    EXPECT_NE(nullptr, sut.limits.find("inlet1_voltage_V"));
    EXPECT_NE(nullptr, sut.limits.find("sensor1_temperature_degC"));
}

TEST_F(ReplayOptionsTest, ReadInput_TakesTheSchedule) {
    auto const sut = readInput(optionsOf({"--plug-after", "2", "--unplug-after", "1", sensor_.path()}));
    EXPECT_TRUE(sut.schedule.isToGo(sensorPoint));
    EXPECT_EQ(1000U, sut.schedule.due());
}

TEST_F(ReplayOptionsTest, LimitOfAColumnThatIsNotThere_IsRefused) {
    EXPECT_EQ("--limit: inlet1_current_A: the column stands in none of the recordings; expected a column of "
              "the files "
              "to replay",
              failureOf({"--limit", "inlet1_current_A:high-alarm=1", inlet_.path()}));
}

TEST_F(ReplayOptionsTest, RowBeyondTheFile_IsRefused) {
    EXPECT_EQ("--from: " + inlet_.path() + " has no row 3; expected 1 to 2",
              failureOf({"--from", "3", inlet_.path()}));
    EXPECT_EQ("no InputError", failureOf({"--from", "2", inlet_.path()}));
}

TEST_F(ReplayOptionsTest, MoreRowsThanFiles_IsRefused) {
    EXPECT_EQ("--from: 2 rows for 1 files; expected one row for each file at most",
              failureOf({"--from", "1,1", inlet_.path()}));
}

TEST_F(ReplayOptionsTest, ScheduleWithoutRecording_IsRefused) {
    EXPECT_EQ("--plug-after: there is nothing to add or remove; expected a recording with columns of sensor1",
              failureOf({"--plug-after", "1", inlet_.path()}));
    EXPECT_EQ(
        "--unplug-after: there is nothing to add or remove; expected a recording with columns of sensor1",
        failureOf({"--unplug-after", "1", inlet_.path()}));
    EXPECT_EQ(
        "--group-after: there is nothing to add or remove; expected a recording with the active power of "
        "outlets 1, 2 and 3",
        failureOf({"--group-after", "1", inlet_.path()}));
}

TEST_F(ReplayOptionsTest, ScheduleOutOfTurn_IsRefused) {
    EXPECT_EQ("--plug-after: the change after 2000 ms follows that of --plug-after after 1000 ms; expected "
              "--plug-after and --unplug-after by turns, at different times",
              failureOf({"--plug-after", "1", "--plug-after", "2", sensor_.path()}));
}

TEST_F(ReplayOptionsTest, Record_TakesThePlaceOfFiles) {
    auto const sut = optionsOf({"--from-record", "r", "--speed", "3", "--until", "4", "--hold", "--quiet"});
    EXPECT_EQ("r", sut.record);
    EXPECT_TRUE(sut.files.empty());
    EXPECT_EQ(4U, sut.until);
}

TEST_F(ReplayOptionsTest, ReadRecord_CountsTheSamples) {
    test::RecordingFile const file({3, test::randomImages(1, 60).front()});
    auto const all = readRecord(optionsOf({"--from-record", file.path()}));
    EXPECT_EQ(file.path(), all.file);
    EXPECT_EQ(3U, all.samples);
    EXPECT_EQ(2U, readRecord(optionsOf({"--from-record", file.path(), "--until", "2"})).samples);
    EXPECT_EQ(3U, readRecord(optionsOf({"--from-record", file.path(), "--until", "9"})).samples);
}

TEST_F(ReplayOptionsTest, OptionsOfMeasurements_DoNotGoWithARecord) {
    std::vector<std::vector<std::string>> const misplaced{
        {"--from", "1"},        {"--loop"},
        {"--limit", "x"},       {"--limits", "x"},
        {"--plug-after", "1"},  {"--unplug-after", "1"},
        {"--group-after", "1"}, {"--ungroup-after", "1"},
    };
    for (auto arguments : misplaced) {
        auto const option = arguments.front();
        arguments.insert(arguments.end(), {"--from-record", "r"});
        EXPECT_EQ(option + ": it does not go with --from-record; expected none but --speed, --until, --hold, "
                           "--quiet and --log-level beside it",
                  recordFailureOf(arguments));
    }
    EXPECT_EQ(
        "FILE: it does not go with --from-record; expected none but --speed, --until, --hold, --quiet and "
        "--log-level beside it",
        recordFailureOf({"--from-record", "r", "a.csv"}));
}

TEST_F(ReplayOptionsTest, RecordThatIsDamaged_IsRefusedUpToTheLimit) {
    test::RecordingFile const file({3, test::randomImages(1, 60).front()});
    std::filesystem::resize_file(file.path(), std::filesystem::file_size(file.path()) - 1);
    auto const failure = recordFailureOf({"--from-record", file.path()});
    EXPECT_EQ(0U, failure.find("--from-record: cannot read " + file.path() + ": the sample at byte "))
        << failure;
    EXPECT_NE(
        std::string::npos,
        failure.find(" is cut off; 2 samples before it are complete; expected a recorded region; --until "
                     "ends the replay before a damaged sample"))
        << failure;
    EXPECT_EQ(2U, readRecord(optionsOf({"--from-record", file.path(), "--until", "2"})).samples);
}

TEST_F(ReplayOptionsTest, RecordOfAShortObject_IsRefusedUpToTheLimit) {
    test::RecordingFile const file(imagesWithAShortOne());
    auto const failure = recordFailureOf({"--from-record", file.path()});
    EXPECT_NE(
        std::string::npos,
        failure.find(" was taken from an object of 0 bytes; expected samples of 320032 bytes; --until ends "
                     "the replay before it"))
        << failure;
    EXPECT_EQ(2U, readRecord(optionsOf({"--from-record", file.path(), "--until", "2"})).samples);
}

TEST_F(ReplayOptionsTest, RecordWithoutSamples_IsRefused) {
    test::RecordingFile const file({});
    EXPECT_EQ("--from-record: " + file.path() + " holds no sample; expected one sample at least",
              recordFailureOf({"--from-record", file.path()}));
    EXPECT_EQ("--from-record: cannot read " + inlet_.path() +
                  ": it is not a capture; expected a recorded region; --until ends the replay before a "
                  "damaged sample",
              recordFailureOf({"--from-record", inlet_.path()}));
}

} // namespace qel::tools

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/ReplayOptions.h"

#include "tools/common/CommandLine.h"
#include "tools/replay/unit/Topology.h"

#include "tests/inspect/capture/CaptureFixture.h"
#include "tests/support/TempFile.h"
#include "tests/tools/replay/CaptureFile.h"
#include "tests/tools/replay/InputFailure.h"

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
    ReplayOptions optionsOf(std::vector<std::string> const& arguments) {
        CLI::App app("", "qel-replay");
        ReplayOptions options;
        defineOptions(app, options);
        std::vector<char const*> argv{"qel-replay"};
        for (auto const& argument : arguments) {
            argv.push_back(argument.c_str());
        }
        app.parse(static_cast<int>(argv.size()), argv.data());
        return options;
    }

    std::string failureOf(std::vector<std::string> const& arguments) {
        return test::inputFailure([&] { readRecordings(optionsOf(arguments)); });
    }

    std::string captureFailureOf(std::vector<std::string> const& arguments) {
        return test::inputFailure([&] { readCapture(optionsOf(arguments)); });
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

TEST_F(ReplayOptionsTest, NumbersThatAreNotFinite_AreRefused) {
    for (auto const* const option :
         {"--speed", "--plug-after", "--unplug-after", "--group-after", "--ungroup-after"}) {
        for (auto const* const number : {"nan", "-nan", "NAN", "inf", "-inf", "1e400"}) {
            EXPECT_THROW(optionsOf({option, number, "a"}), CLI::ParseError) << option << ' ' << number;
        }
    }
}

TEST_F(ReplayOptionsTest, ReadRecordings_TakesRowsAndRepetition) {
    auto const sut =
        readRecordings(optionsOf({"--from", "2", "--until", "9", "--loop", inlet_.path(), sensor_.path()}));
    EXPECT_EQ(2U, sut.recordings.all().size());
    EXPECT_EQ((std::vector<std::size_t>{1}), sut.rows.firstRows);
    EXPECT_EQ(9U, sut.rows.rowLimit);
    EXPECT_TRUE(sut.rows.isEndless);
    EXPECT_EQ(std::nullopt, sut.schedule.due());
}

TEST_F(ReplayOptionsTest, ReadRecordings_TakesLimitsFromBothPlaces) {
    test::TempFile const limits("inlet1_voltage_V:high-alarm=253\n");
    auto const sut =
        readRecordings(optionsOf({"--limits", limits.path(), "--limit",
                                  "sensor1_temperature_degC:high-alarm=30", inlet_.path(), sensor_.path()}));
    EXPECT_NE(nullptr, sut.limits.find("inlet1_voltage_V"));
    EXPECT_NE(nullptr, sut.limits.find("sensor1_temperature_degC"));
}

TEST_F(ReplayOptionsTest, ReadRecordings_TakesTheSchedule) {
    auto const sut = readRecordings(optionsOf({"--plug-after", "2", "--unplug-after", "1", sensor_.path()}));
    EXPECT_TRUE(sut.schedule.isToGo(sensorPoint));
    EXPECT_EQ(1000U, sut.schedule.due());
}

TEST_F(ReplayOptionsTest, LimitOfAColumnThatIsNotThere_IsRefused) {
    EXPECT_EQ("--limit: inlet1_current_A: no recording has this column; expected a column of the FILEs",
              failureOf({"--limit", "inlet1_current_A:high-alarm=1", inlet_.path()}));
}

TEST_F(ReplayOptionsTest, RowBeyondTheFile_IsRefused) {
    EXPECT_EQ("--from: " + inlet_.path() + " has no row 3; expected 1 to 2",
              failureOf({"--from", "3", inlet_.path()}));
    EXPECT_EQ("no InputError", failureOf({"--from", "2", inlet_.path()}));
}

TEST_F(ReplayOptionsTest, MoreRowsThanFiles_IsRefused) {
    EXPECT_EQ("--from: 2 rows are given; expected at most 1, one per FILE",
              failureOf({"--from", "1,1", inlet_.path()}));
}

TEST_F(ReplayOptionsTest, ScheduleWithoutRecording_IsRefused) {
    EXPECT_EQ("--plug-after: nothing to add or remove; expected a recording with columns of sensor1",
              failureOf({"--plug-after", "1", inlet_.path()}));
    EXPECT_EQ("--unplug-after: nothing to add or remove; expected a recording with columns of sensor1",
              failureOf({"--unplug-after", "1", inlet_.path()}));
    EXPECT_EQ("--group-after: nothing to add or remove; expected a recording with the active power of "
              "outlets 1, 2 and 3",
              failureOf({"--group-after", "1", inlet_.path()}));
}

TEST_F(ReplayOptionsTest, ScheduleOutOfTurn_IsRefused) {
    EXPECT_EQ(
        "--plug-after: the change at 2000 ms follows --plug-after at 1000 ms; expected --plug-after and "
        "--unplug-after to alternate, at different times",
        failureOf({"--plug-after", "1", "--plug-after", "2", sensor_.path()}));
}

TEST_F(ReplayOptionsTest, FromRecord_ReplacesTheFiles) {
    auto const sut = optionsOf({"--from-record", "r", "--speed", "3", "--until", "4", "--hold", "--quiet"});
    EXPECT_EQ("r", sut.capture);
    EXPECT_TRUE(sut.files.empty());
    EXPECT_EQ(4U, sut.until);
}

TEST_F(ReplayOptionsTest, ReadCapture_CountsTheSamples) {
    test::CaptureFile const file({3, test::randomImages(1, 60).front()});
    auto const all = readCapture(optionsOf({"--from-record", file.path()}));
    EXPECT_EQ(file.path(), all.samples.file);
    EXPECT_EQ(3U, all.samples.samples);
    EXPECT_FALSE(all.samples.isCutShort);
    auto const until = [&](char const* limit) {
        return readCapture(optionsOf({"--from-record", file.path(), "--until", limit})).samples;
    };
    EXPECT_EQ(2U, until("2").samples);
    EXPECT_TRUE(until("2").isCutShort);
    EXPECT_EQ(3U, until("3").samples);
    EXPECT_FALSE(until("3").isCutShort);
    EXPECT_EQ(3U, until("9").samples);
}

TEST_F(ReplayOptionsTest, OptionsOfRecordings_AreNotAllowedWithACapture) {
    std::vector<std::vector<std::string>> const misplaced{
        {"--from", "1"},       {"--control", "x"},      {"--limit", "x"},       {"--limits", "x"},
        {"--plug-after", "1"}, {"--unplug-after", "1"}, {"--group-after", "1"}, {"--ungroup-after", "1"},
    };
    for (auto arguments : misplaced) {
        auto const option = arguments.front();
        arguments.insert(arguments.end(), {"--from-record", "r"});
        EXPECT_EQ(option + ": not allowed with --from-record; expected only --speed, --until, --loop, --now, "
                           "--hold, --quiet and --log-level with it",
                  captureFailureOf(arguments));
    }
    EXPECT_EQ("FILE: not allowed with --from-record; expected only --speed, --until, --loop, --now, --hold, "
              "--quiet and --log-level with it",
              captureFailureOf({"--from-record", "r", "a.csv"}));
}

TEST_F(ReplayOptionsTest, LoopAndNow_AreTakenForCapturesToo) {
    test::CaptureFile const file({3, test::randomImages(1, 60).front()});
    auto const sut = readCapture(optionsOf({"--from-record", file.path(), "--loop", "--now"}));
    EXPECT_TRUE(sut.samples.isEndless);
    EXPECT_TRUE(sut.stamps.isPresent());
    EXPECT_FALSE(readCapture(optionsOf({"--from-record", file.path()})).stamps.isPresent());
    EXPECT_TRUE(readRecordings(optionsOf({"--now", inlet_.path()})).stamps.isPresent());
}

TEST_F(ReplayOptionsTest, Commands_ReplaceTheFilesAndKeepTheirOrder) {
    auto const sut = optionsOf({"--set", "unit1/inlet1:voltage=1", "--unset", "unit1/inlet1", "--set",
                                "unit1/inlet1:current=2,high-alarm", "--control", "p"});
    EXPECT_EQ((std::vector<std::string>{"set unit1/inlet1:voltage=1", "unset unit1/inlet1",
                                        "set unit1/inlet1:current=2,high-alarm"}),
              sut.commands);
    EXPECT_EQ("p", sut.control);
    EXPECT_NO_THROW(checkCommands(sut));
}

TEST_F(ReplayOptionsTest, WrongCommands_AreRefusedBeforeOneIsSent) {
    auto const failureOfCommands = [&](std::vector<std::string> const& arguments) {
        return test::inputFailure([&] { checkCommands(optionsOf(arguments)); });
    };
    EXPECT_EQ("--control: missing; expected the path that the running replay was started with, for --set and "
              "--unset",
              failureOfCommands({"--unset", "unit1"}));
    EXPECT_EQ("FILE: not allowed with --set and --unset, which speak to a running replay; expected only "
              "--control with them",
              failureOfCommands({"--unset", "unit1", "--control", "p", "a.csv"}));
    EXPECT_EQ(
        "set: \"x\" is not a number; expected a decimal number in the unit in which qelshm shows the value",
        failureOfCommands({"--set", "unit1/inlet1:voltage=x", "--control", "p"}));
}

TEST_F(ReplayOptionsTest, CaptureThatIsDamaged_IsRefusedUpToTheLimit) {
    test::CaptureFile const file({3, test::randomImages(1, 60).front()});
    std::filesystem::resize_file(file.path(), std::filesystem::file_size(file.path()) - 1);
    auto const failure = captureFailureOf({"--from-record", file.path()});
    EXPECT_EQ(0U, failure.find("--from-record: cannot read " + file.path() + ": the sample at byte "))
        << failure;
    EXPECT_NE(
        std::string::npos,
        failure.find(" is cut off; 2 samples before it are complete; expected a capture of qelshm record; "
                     "--until can end the replay before a damaged sample"))
        << failure;
    auto const before = readCapture(optionsOf({"--from-record", file.path(), "--until", "2"})).samples;
    EXPECT_EQ(2U, before.samples);
    EXPECT_TRUE(before.isCutShort);
}

TEST_F(ReplayOptionsTest, CaptureOfAShortObject_IsRefusedUpToTheLimit) {
    test::CaptureFile const file(imagesWithAShortOne());
    auto const failure = captureFailureOf({"--from-record", file.path()});
    EXPECT_NE(std::string::npos,
              failure.find(" is of an object of 0 bytes; expected samples of 320032 bytes; --until can end "
                           "the replay before it"))
        << failure;
    auto const before = readCapture(optionsOf({"--from-record", file.path(), "--until", "2"})).samples;
    EXPECT_EQ(2U, before.samples);
    EXPECT_TRUE(before.isCutShort);
}

TEST_F(ReplayOptionsTest, CaptureWithoutSamples_IsRefused) {
    test::CaptureFile const file({});
    EXPECT_EQ("--from-record: " + file.path() + " is empty; expected at least one sample",
              captureFailureOf({"--from-record", file.path()}));
    EXPECT_EQ(
        "--from-record: cannot read " + inlet_.path() +
            ": it is not a capture; expected a capture of qelshm record; --until can end the replay before a "
            "damaged sample",
        captureFailureOf({"--from-record", inlet_.path()}));
}

} // namespace qel::tools

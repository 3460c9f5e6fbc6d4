// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/RecordCommand.h"

#include "tests/inspect/FileTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Eventually.h"
#include "tests/support/ForgedRegion.h"
#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"

#include "inspect/capture/CaptureReader.h"
#include "inspect/capture/CaptureTimeline.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <system_error>

namespace qel::test {

namespace {

std::vector<inspect::CaptureSample> samplesOf(std::string const& file) {
    inspect::CaptureReader reader(file);
    std::vector<inspect::CaptureSample> samples;
    while (auto sample = reader.next()) {
        samples.push_back(*sample);
    }
    return samples;
}

void awaitBytes(char const* file, std::uintmax_t bytes) {
    EXPECT_TRUE(eventually([&] {
        std::error_code missing;
        auto const size = std::filesystem::file_size(file, missing);
        return !missing && size >= bytes;
    }));
}

} // namespace

TEST(RecordCommandTest, Count_RecordsSoManySamples) {
    ImageFolder const folder;
    ForgedRegion const region;
    region.activate();
    auto const outcome = runQelshm({"record", "unit.rec", "--json", "--count", "3", "--interval", "0.05"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    auto const document = nlohmann::json::parse(outcome.output);
    EXPECT_EQ(3, document.at("samples"));
    EXPECT_EQ(std::filesystem::file_size("unit.rec"), document.at("bytes"));
    auto const samples = samplesOf("unit.rec");
    ASSERT_EQ(3U, samples.size());
    EXPECT_GE(samples[2].time, 100U);
    EXPECT_TRUE(samples[2].image.isActive());
}

TEST(RecordCommandTest, Duration_EndsIt) {
    ImageFolder const folder;
    ForgedRegion const region;
    EXPECT_EQ(0, runQelshm({"record", "unit.rec", "--duration", "0.2", "--interval", "0.05"}).status);
    EXPECT_GT(samplesOf("unit.rec").size(), 1U);
}

TEST(RecordCommandTest, Signal_EndsItInOrder) {
    ImageFolder const folder;
    ForgedRegion const region;
    ChildProcess sut({QELSHM, "record", "unit.rec", "--interval", "0.05"});
    awaitBytes("unit.rec", 200);
    sut.signal(SIGINT);
    EXPECT_THAT(sut.readAll(), testing::ContainsRegex("^[0-9]+ samples, [0-9]+ bytes\n$"));
    EXPECT_EQ(0, sut.wait());
    EXPECT_GT(samplesOf("unit.rec").size(), 1U);
}

TEST(RecordCommandTest, FileThatExists_IsRefused) {
    ImageFolder const folder;
    auto const file = folder.add("wiped");
    ForgedRegion const region;
    auto const outcome = runQelshm({"record", file});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: cannot record to wiped.img: File exists\n", outcome.errors);
}

TEST(RecordCommandTest, Killed_LeavesAReadableFileUpToItsLastSample) {
    ImageFolder const folder;
    ForgedRegion const region;
    region.activate();
    ChildProcess sut({QELSHM, "record", "unit.rec", "--interval", "0.01"});
    awaitBytes("unit.rec", 200);
    sut.signal(SIGKILL);
    EXPECT_EQ(128 + SIGKILL, sut.wait());
    inspect::CaptureTimeline const timeline("unit.rec");
    EXPECT_EQ("", timeline.damage());
    EXPECT_GT(timeline.samples(), 2U);
    EXPECT_EQ(0, runQelshm({"--image", "unit.rec", "list"}).status);
}

TEST(RecordCommandTest, MaxSize_Rotates) {
    ImageFolder const folder;
    ForgedRegion const region;
    region.activate();
    auto const outcome = runQelshm({"record", "unit.rec", "--json", "--count", "20", "--interval", "0.01",
                                    "--max-size", "120", "--max-files", "3"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    auto const document = nlohmann::json::parse(outcome.output);
    EXPECT_EQ((std::vector<std::string>{"unit.2.rec", "unit.1.rec", "unit.rec"}), document.at("files"));
    EXPECT_EQ(20, document.at("samples"));
    for (std::string const file : {"unit.2.rec", "unit.1.rec", "unit.rec"}) {
        EXPECT_LE(std::filesystem::file_size(file), 120U);
        EXPECT_TRUE(samplesOf(file).front().image.isActive()) << "a whole capture by itself";
    }
}

TEST(RecordCommandTest, RegionThatGoes_IsRecordedAsNothingAndReplayable) {
    ImageFolder const folder;
    auto region = std::make_unique<ForgedRegion>();
    region->activate();
    ChildProcess sut({QELSHM, "record", "unit.rec", "--interval", "0.05"}, ChildProcess::Errors::IntoOutput);
    awaitBytes("unit.rec", 100);
    region.reset();
    EXPECT_EQ(0, ::unlink("/dev/shm/QelSharedMemory"));
    EXPECT_TRUE(
        sut.readUntil("warning: there is no shared-memory object QelSharedMemory; recording goes on"));
    region = std::make_unique<ForgedRegion>();
    region->activate();
    auto const restarted = [] {
        return runQelshm({"log", "unit.rec"}).output.find("restart") != std::string::npos;
    };
    EXPECT_TRUE(eventually(restarted));
    sut.signal(SIGTERM);
    EXPECT_EQ(0, sut.wait());
    for (auto const& sample : samplesOf("unit.rec")) {
        EXPECT_EQ(shm::REGION_SIZE, sample.image.size()) << "as qel-replay wants it";
    }
}

TEST(RecordCommandTest, OnAlarm_KeepsOnlyAlarms) {
    ImageFolder const folder;
    ForgedRegion const region;
    region.point(0, 0x0100FFFFFFFF0000);
    region.values(0, 0, {1});
    region.devices({0});
    region.activate();
    EXPECT_EQ(
        0, runQelshm({"record", "unit.rec", "--on-alarm", "1", "--count", "3", "--interval", "0.01"}).status);
    EXPECT_TRUE(std::filesystem::is_empty("."));
    region.raw().set<std::int32_t>(38400 + 16, 1); // high alarm
    auto const outcome = runQelshm({"record", "unit.rec", "--on-alarm", "0.5,1", "--count", "3", "--interval",
                                    "0.01", "--json", "--now", "1700000000000"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    auto const document = nlohmann::json::parse(outcome.output);
    EXPECT_EQ((std::vector<std::string>{"unit.20231114T221320Z.rec"}), document.at("files"));
    EXPECT_EQ(3U, samplesOf("unit.20231114T221320Z.rec").size());
}

TEST(RecordCommandTest, NamesWithOnAlarm_ChooseWhoseAlarmsAreKept) {
    ImageFolder const folder;
    ForgedRegion const region;
    region.point(0, 0x0100FFFFFFFF0000);
    region.values(0, 0, {1, 19});
    region.devices({0});
    region.activate();
    region.raw().set<std::int32_t>(38400 + 16, 1); // high alarm of the voltage
    std::vector<std::string> const words{"record",  "unit.rec", "--on-alarm", "1",
                                         "--count", "2",        "--interval", "0.01"};
    auto const recordWith = [&](std::string const& name) {
        auto all = words;
        all.push_back(name);
        return runQelshm(all);
    };
    auto const other = recordWith("unit1:active-power");
    EXPECT_EQ(0, other.status) << other.errors;
    EXPECT_EQ("0 samples, 0 bytes\n", other.output);
    auto const later = recordWith("unit1/inlet1");
    EXPECT_EQ("0 samples, 0 bytes\n", later.output);
    EXPECT_EQ("qelshm: nothing has the name \"unit1/inlet1\" yet; its alarms are kept when it comes\n",
              later.errors);
    auto const wanted = recordWith("unit1:v*");
    EXPECT_EQ(0, wanted.status) << wanted.errors;
    EXPECT_EQ("", wanted.errors);
    EXPECT_THAT(wanted.output, testing::StartsWith("2 samples, "));
}

TEST(RecordCommandTest, NamesWithoutOnAlarm_AreRefusedWithTheReason) {
    ImageFolder const folder;
    ForgedRegion const region;
    auto const outcome = runQelshm({"record", "unit.rec", "unit1:voltage"});
    EXPECT_EQ(2, outcome.status);
    EXPECT_EQ(
        "qelshm: NAME requires --on-alarm: a capture holds all values, which log, export and plot choose "
        "from; NAME chooses alarms\n",
        outcome.errors);
    EXPECT_FALSE(std::filesystem::exists("unit.rec"));
    EXPECT_EQ(2, runQelshm({"record", "unit.rec", "--on-alarm", "5", "unit1//x"}).status);
}

TEST(RecordCommandTest, OnAlarmWhereNothingCanBeWritten_IsAnErrorAtOnce) {
    ImageFolder const folder;
    ForgedRegion const region;
    region.activate();
    auto const outcome = runQelshm({"record", "nodir/unit.rec", "--on-alarm", "1", "--count", "3",
                                    "--interval", "0.01", "--now", "1700000000000"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: cannot record to nodir/unit.20231114T221320Z.rec: No such file or directory\n",
              outcome.errors);
}

TEST(RecordCommandTest, FullDisk_SaysSoAndLeavesWhatWasWritten) {
    ImageFolder const folder;
    ForgedRegion const region;
    region.activate();
    SizeLimit const limit(200);
    auto const outcome = runQelshm({"record", "unit.rec", "--count", "100", "--interval", "0.001"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: cannot record to unit.rec: File too large; what was recorded before can be read\n",
              outcome.errors);
    EXPECT_THAT(outcome.output, testing::ContainsRegex("^[0-9]+ samples, [0-9]+ bytes\n$"));
    EXPECT_EQ("", inspect::CaptureTimeline("unit.rec").damage());
}

TEST(RecordCommandTest, WrongBounds_AreWrongArguments) {
    EXPECT_EQ(2, runQelshm({"record", "unit.rec", "--max-size", "0"}).status);
    EXPECT_EQ(2, runQelshm({"record", "unit.rec", "--on-alarm", "nan"}).status);
    auto const outcome = runQelshm({"record", "unit.rec", "--max-files", "3"});
    EXPECT_EQ(2, outcome.status);
    EXPECT_EQ("qelshm: --max-files requires --max-size or --on-alarm\n", outcome.errors);
}

TEST(RecordCommandTest, NothingThere_WritesNoFile) {
    ImageFolder const folder;
    EXPECT_EQ(1, runQelshm({"record", "unit.rec"}).status);
    EXPECT_FALSE(std::filesystem::exists("unit.rec"));
}

} // namespace qel::test

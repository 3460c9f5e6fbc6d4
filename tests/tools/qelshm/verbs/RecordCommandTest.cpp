// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/RecordCommand.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/ForgedRegion.h"
#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"

#include "inspect/capture/CaptureReader.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <filesystem>

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
    while (!std::filesystem::exists("unit.rec") || std::filesystem::file_size("unit.rec") < 200) {
    }
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

TEST(RecordCommandTest, NothingThere_WritesNoFile) {
    ImageFolder const folder;
    EXPECT_EQ(1, runQelshm({"record", "unit.rec"}).status);
    EXPECT_FALSE(std::filesystem::exists("unit.rec"));
}

} // namespace qel::test

// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/LogCommand.h"

#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleCapture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>

#include <string>
#include <vector>

namespace qel::test {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TEST(LogCommandTest, Names_SelectEvents) {
    ImageFolder const folder;
    auto const file = sampleCapture();
    auto const outcome = runQelshm({"log", file, "unit1/**:active-power", "--to", "+39s"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ("2023-11-14T22:13:30Z      value state    unit1/inlet1/circuit1/socket2:active-power    "
              "No Error => Low Warning\n"
              "2023-11-14T22:13:40Z      value state    unit1/inlet1/circuit1/socket2:active-power    "
              "Low Warning => High Alarm\n"
              "2023-11-14T22:13:50Z      value state    unit1/inlet1/circuit1/socket2:active-power    "
              "High Alarm => No Error\n",
              outcome.output);
}

TEST(LogCommandTest, GapsAndRestarts_AreListedForEveryName) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"log", sampleCapture(), "group1"});
    EXPECT_THAT(outcome.output,
                AllOf(HasSubstr("2023-11-14T22:14:10Z      gap "), HasSubstr("no sample for 11 s\n"),
                      HasSubstr("2023-11-14T22:14:15Z      inactive\n"),
                      HasSubstr("2023-11-14T22:14:17Z      restart\n"), Not(HasSubstr("socket"))));
}

TEST(LogCommandTest, Json_IsOneDocument) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"log", "--json", sampleCapture(), "unit1/inlet1/circuit1/socket2"});
    auto const document = nlohmann::json::parse(outcome.output);
    EXPECT_EQ("log", document.at("verb"));
    EXPECT_EQ(51, document.at("samples"));
    auto const& event = document.at("events").at(1);
    EXPECT_EQ("value state", event.at("event"));
    EXPECT_EQ("No Error", event.at("before").at("text"));
    EXPECT_EQ("unit1/inlet1/circuit1/socket2", event.at("path"));
    auto const none = nlohmann::json::parse(
        runQelshm({"log", "--json", "night.rec", "unit1/inlet1", "--to", "+5s"}).output);
    EXPECT_TRUE(none.at("events").empty());
}

TEST(LogCommandTest, NameThatSelectsNothing_IsAnError) {
    ImageFolder const folder;
    auto const file = sampleCapture();
    auto const outcome = runQelshm({"log", file, "unit1", "unit1/inlet7"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_EQ("qelshm: there is no point or value \"unit1/inlet7\" in this part of night.rec\n",
              outcome.errors);
    EXPECT_EQ(1, runQelshm({"log", file, "unit1:voltage"}).status) << "the point has no such value";
    EXPECT_EQ(1, runQelshm({"log", file, "unit1/**/socket9"}).status);
    auto const document = nlohmann::json::parse(runQelshm({"log", "--json", file, "unit1/inlet7"}).output);
    EXPECT_EQ("there is no point or value \"unit1/inlet7\" in this part of night.rec", document.at("error"));
}

TEST(LogCommandTest, NameOfWhatCameOrWentInThePart_IsNoError) {
    ImageFolder const folder;
    auto const file = sampleCapture();
    auto const gone = runQelshm({"log", file, "unit1/sensor1.1", "--from", "+57s"});
    EXPECT_EQ(0, gone.status) << gone.errors;
    EXPECT_THAT(gone.output, HasSubstr("point removed"));
    EXPECT_EQ(1, runQelshm({"log", file, "unit1/sensor1.1", "--from", "+58s"}).status);
}

TEST(LogCommandTest, WrongArguments_AreClearErrors) {
    ImageFolder const folder;
    auto const file = sampleCapture();
    auto const image = folder.add("healthy");
    EXPECT_EQ("qelshm: cannot read healthy.img: it is not a capture\n", runQelshm({"log", image}).errors);
    EXPECT_EQ("qelshm: --to +2s is before --from +5s\n",
              runQelshm({"log", file, "--from", "+5s", "--to", "+2s"}).errors);
    auto const pattern = runQelshm({"log", file, "unit1//x"});
    EXPECT_EQ(2, pattern.status);
    EXPECT_THAT(pattern.errors, HasSubstr("unit1//x"));
    EXPECT_EQ(2, runQelshm({"log", file, "--from", "yesterday"}).status);
    EXPECT_EQ(2, runQelshm({"log"}).status);
}

TEST(LogCommandTest, CaptureInAPipe_IsAnError) {
    ImageFolder const folder;
    ASSERT_EQ(0, ::mkfifo("fifo", 0600));
    auto const outcome = runQelshm({"log", "fifo"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: fifo is a capture in a pipe; save it to a file first\n", outcome.errors);
}

TEST(LogCommandTest, RangeLongerThanTheCapture_IsTheWholeCapture) {
    ImageFolder const folder;
    auto const file = sampleCapture();
    auto const whole = runQelshm({"log", file}).output;
    std::vector<std::vector<std::string>> const ranges{
        {"--from", "-8h"},
        {"--to", "+8h"},
        {"--from", "-300000d", "--to", "+300000d"},
        {"--from", "2023-11-14T00:00:00Z", "--to", "2023-11-15T00:00:00Z"}};
    for (auto const& range : ranges) {
        std::vector<std::string> words{"log", file};
        words.insert(words.end(), range.begin(), range.end());
        auto const outcome = runQelshm(words);
        EXPECT_EQ("", outcome.errors);
        EXPECT_EQ(whole, outcome.output) << range[1];
    }
}

TEST(LogCommandTest, RangeOutsideTheCapture_IsAnError) {
    ImageFolder const folder;
    auto const file = sampleCapture();
    std::string const lasts = " is outside the capture night.rec, which lasts from 2023-11-14T22:13:20Z to "
                              "2023-11-14T22:14:20Z\n";
    EXPECT_EQ("qelshm: 2023-11-14T00:00:00Z" + lasts,
              runQelshm({"log", file, "--to", "2023-11-14T00:00:00Z"}).errors);
    EXPECT_EQ("qelshm: 2023-11-15T00:00:00Z" + lasts,
              runQelshm({"log", file, "--from", "2023-11-15T00:00:00Z"}).errors);
    EXPECT_EQ("qelshm: -7h" + lasts, runQelshm({"log", file, "--from", "-8h", "--to", "-7h"}).errors);
    EXPECT_EQ("qelshm: --to -8h is before --from -7h\n",
              runQelshm({"log", file, "--from", "-7h", "--to", "-8h"}).errors);
    EXPECT_EQ(1, runQelshm({"--image", file, "--at", "-8h", "status"}).status) << "a moment is exact";
}

} // namespace qel::test
